#pragma once

// What the walkthrough's steps tell the screen that holds them.
class WalkthroughDelegate
{
public:
    virtual ~WalkthroughDelegate() = default;
    virtual void didSelectDownload() = 0;
    virtual void didSelectiTunes() = 0;
    virtual void iTunesCanceled() = 0;
    virtual void downloadCanceled() = 0;
    virtual void databaseReady() = 0;
};

// Who learns that the first run has a catalogue: the application object.
class DatabaseReadyDelegate
{
public:
    virtual ~DatabaseReadyDelegate() = default;
    virtual void databaseReady() = 0;
};

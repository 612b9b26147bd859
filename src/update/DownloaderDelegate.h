#pragma once

#include <QString>

// A Downloader's failure: the domain "Velmora" with the codes of the Downloader, or a transfer's
// URL error code (-999 for a cancelled one). Messages are the English texts of the program;
// screens choose what to show from the code.
struct Error {
    QString domain;
    int code = 0;
    QString message;
};

// The screen following a Downloader. Every call arrives on the main thread.
class DownloaderDelegate
{
public:
    virtual ~DownloaderDelegate() = default;
    virtual void downloadDidFinishWithError(const Error &error) {}
    virtual void downloadProgress(qint64 written, qint64 total) {}
    virtual void downloadDidComplete() {}
    virtual void downloadingPatch() {}
    virtual void patchStarted() {}
    virtual void patchProgress(int done, int total) {}
    virtual void patchSuceeded() {}
    virtual void patchFailed(const QString &message) {}
};

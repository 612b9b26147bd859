#pragma once

#include <QString>

// What a failed patch leads to.
enum class PatchFailedAction {
    doNothing = 0,      // tell the user; keep what is there
    downloadFullDB = 1, // fetch the whole file instead, without a word to the user
};

// Who follows a patch being applied. Called on the thread that loads the catalogue.
class PatchDelegate
{
public:
    virtual ~PatchDelegate() = default;
    virtual void patchProgress(int done, int total) = 0;
    virtual void patchSuceeded() = 0;
    virtual void patchFailed(const QString &message, PatchFailedAction action) = 0;
};

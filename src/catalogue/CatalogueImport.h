#pragma once

#include <QString>

class Restaurants;

// A catalogue file the user hands over (dropped on the window, chosen in a dialog) goes into
// Documents under the name of its date, if the load would take it. The file the user chose is
// never changed, moved or deleted, a file already in Documents is never replaced, and a copy cut
// short (a full disk) leaves nothing behind.
namespace CatalogueImport {
enum class Outcome {
    Imported,
    NotACatalogue, // not an SQLCipher file at all (a plain SQLite file, text, a picture...)
    OtherKey,      // unreadable with the app's key: another key, or noise
    Damaged,       // readable, but the load would refuse it
    NoDate,        // no version date to name it by
    NotNewer,      // not newer than the catalogue in use, or its date is in Documents already
    CopyFailed,    // the copy into Documents failed (a full disk, a folder not writable)
};
struct Result {
    Outcome outcome = Outcome::CopyFailed;
    QString path;   // where it went, when imported
    QString detail; // the technical reason, for the log
};
// Blocks while the file is checked page by page and copied: call it off the main thread.
Result importFile(const Restaurants &restaurants, const QString &source, const QString &documents);
}

#pragma once

#include <QDate>
#include <QString>

#include <functional>

class Restaurants;

// The last steps of a downloaded catalogue, which read the whole file (its hash, every page):
// checked and moved into place on a worker thread, the outcome handed to the main thread.
struct CatalogueInstall {
    enum class Outcome {
        Installed,    // in Documents now, or there already byte for byte
        Refused,      // its signature doesn't hold: `message` says why
        SourceFailed, // this source served something unusable: `code`, `message`
        Failed,       // the update fails: `code`, `message`
    };
    Outcome outcome = Outcome::Installed;
    int code = 0;
    QString message;
    QString finalPath;

    // `location`: the downloaded file, deleted unless installed. `signatureProblem` (null when
    // signatures aren't required) answers why the file isn't the one signed, and its date.
    static CatalogueInstall run(Restaurants &restaurants, const QString &location, bool keepOutdated,
                                const std::function<QString(const QString &, QDate *)> &signatureProblem);
};

#pragma once

#include <QDate>
#include <QString>

// What examining a catalogue file found. `date` is the file's version date for ok and outdated.
struct VerificationResult {
    enum Kind { ok, outdated, noVersionDate, cipherError, openError, unknownError };

    Kind kind = unknownError;
    QDate date;

    static VerificationResult makeOk(QDate d) { return {ok, d}; }
    static VerificationResult makeOutdated(QDate d) { return {outdated, d}; }
    static VerificationResult make(Kind k) { return {k, QDate()}; }

    bool operator==(const VerificationResult &other) const = default;
    // "ok", "outdated", "noVersionDate", "cipherError", "openError", "unknownError".
    QString kindName() const;
};

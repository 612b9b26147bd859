#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

// One hit as the collector read it off the wire.
struct CollectedHit {
    QString type, trackingId, clientId;
    QString category, action, label, value; // events
    QString screen;                         // screen views
    qint64 hitTime = -1;                    // "ht", milliseconds since 1970
    QString cacheBuster;                    // "z"
    QByteArray payload;
    // What tells this hit from every other hit of its client, whichever collector received it
    // and however often: its "z" (a random number per hit), else its hit number "_s", else a
    // digest of the payload without its queue time "qt" (the one parameter a resend changes).
    QString identity;
    // How many times it was received (the app delivers at least once).
    int copies = 1;

    static constexpr qsizetype maxBytes = 8192;

    // Reads one line; nothing, with `why` set to one of a few fixed reasons, when it isn't a
    // valid hit. The reasons are few on purpose: they are counted per reason.
    static std::optional<CollectedHit> parse(const QByteArray &line, QString *why);
};

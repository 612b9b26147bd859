#pragma once

#include "HttpIntake.h"

#include <QHostAddress>
#include <QJsonObject>
#include <QString>
#include <QUrlQuery>

#include <memory>
#include <optional>

class Database;

// One hit as the collector read it off the wire.
struct CollectedHit {
    QString type, trackingId, clientId;
    QString category, action, label, value; // events
    QString screen;                         // screen views
    qint64 hitTime = -1;                    // "ht", milliseconds since 1970
    QString cacheBuster;                    // "z": the same hit sent twice has the same one
    QByteArray payload;
};

// A measurement service of our own, for a publisher who wants to see what the app reports and
// for the tests that check the app's dispatcher against a real server: /collect takes one hit
// (GET query or POST body), /batch one hit a line (POST, plain, gzip or deflate). Each valid hit
// becomes a row of an SQLite file; invalid ones are counted with the reason. A body announced
// over the limit is refused before it is read, and a request is answered only once what it
// brought is stored: when the file can't take it (locked, full), the connection closes with no
// answer, which the app takes as "send again" (any answer makes it delete what it sent).
class HitCollector
{
public:
    static constexpr qsizetype maxHitBytes = 8192;
    static constexpr qsizetype maxBodyBytes = 256 * 1024;
    static constexpr qsizetype maxInflatedBytes = 1024 * 1024;

    explicit HitCollector(const QString &databasePath);
    ~HitCollector();

    bool open(QString *error);
    // The port listened on (a free one for 0), or 0 with `error` set.
    quint16 listen(const QHostAddress &address, quint16 port, QString *error);

    // How long an insert waits for a database another process holds.
    static constexpr int busyTimeoutMs = 2000;

    // Answers as a service under strain would, for tests: a status other than 0 replaces the
    // answer to every request of that path (which then stores nothing).
    int collectStatusOverride = 0;
    int batchStatusOverride = 0;

    // Reads one line; nothing, with `why` set, when it isn't a valid hit.
    static std::optional<CollectedHit> parseHit(const QByteArray &line, QString *why);
    // The summary `velmora-catalogue hits` prints: the total, hits per event, per screen, per day.
    static bool summary(const QString &databasePath, QJsonObject &out, QString *error);

private:
    using Answer = HttpIntake::Answer;
    // No answer when the hits could not be stored.
    std::optional<Answer> collect(const HttpIntake::Request &request);
    bool store(const QList<CollectedHit> &hits, const QStringList &rejections);

    QString m_path;
    std::unique_ptr<Database> m_db;
    HttpIntake m_intake;
};

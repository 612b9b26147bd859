#pragma once

#include "CollectedHit.h"
#include "HitSink.h"
#include "HttpIntake.h"

#include <QHostAddress>
#include <QJsonObject>
#include <QMap>
#include <QString>

#include <memory>

// A measurement service of our own, for a publisher who wants to see what the app reports and
// for the tests that check the app's dispatcher against a real server: /collect takes one hit
// (GET query or POST body), /batch one hit a line (POST, plain, gzip or deflate). Valid hits go
// to a HitSink (an SQLite file or PostgreSQL); invalid ones are counted per reason. A body
// announced over the limit is refused before it is read.
//
// A request is answered only once what it brought is committed. Requests that arrive together
// are committed together (one transaction for all that the event loop delivered at once), so a
// burst costs one round trip to the database, not one per request. When the store fails (the
// database down, slow past its timeout, a file locked or full), every waiting connection closes
// with no answer, which the app takes as "send again": any answer makes it delete what it sent.
class HitCollector
{
public:
    static constexpr qsizetype maxBodyBytes = 256 * 1024;
    static constexpr qsizetype maxInflatedBytes = 1024 * 1024;
    // Hits of one transaction at most; a larger burst is written in several.
    static constexpr qsizetype maxHitsPerCommit = 5000;

    // `location`: see HitSink::forLocation.
    explicit HitCollector(const QString &location);
    ~HitCollector();

    bool open(QString *error);
    // The port listened on (a free one for 0), or 0 with `error` set.
    quint16 listen(const QHostAddress &address, quint16 port, QString *error);
    QString describe() const { return m_sink->describe(); }

    // Answers as a service under strain would, for tests: a status other than 0 replaces the
    // answer to every request of that path (which then stores nothing).
    int collectStatusOverride = 0;
    int batchStatusOverride = 0;

    // The summary `velmora-catalogue hits` prints, of either kind of store.
    static bool summary(const QString &location, QJsonObject &out, QString *error);

private:
    using Answer = HttpIntake::Answer;
    // Hits waiting for the next commit, with the answer each request gets once they are in.
    struct Waiting {
        qsizetype hits = 0;
        Answer answer;
        HttpIntake::Responder respond;
    };

    void receive(const HttpIntake::Request &request, HttpIntake::Responder respond);
    void commit();

    std::unique_ptr<HitSink> m_sink;
    HttpIntake m_intake;
    QList<CollectedHit> m_hits;
    QList<Waiting> m_waiting;
    // Kept (bounded: the reasons are few) until a commit takes them.
    QMap<QString, int> m_rejections;
    bool m_commitScheduled = false;
    bool m_failing = false;
};

#include "HitCollector.h"

#include "platform/Compression.h"

#include <QDebug>
#include <QTimer>

namespace {
// The smallest transparent GIF: what a measurement service answers a single hit with.
const QByteArray pixel = QByteArray::fromBase64("R0lGODlhAQABAIAAAAAAAP///yH5BAEAAAAALAAAAAABAAEAAAIBRAA7");
}

HitCollector::HitCollector(const QString &location)
    : m_sink(HitSink::forLocation(location))
    , m_intake(maxBodyBytes, [this](const HttpIntake::Request &request, HttpIntake::Responder respond) { receive(request, std::move(respond)); })
{
}

HitCollector::~HitCollector() = default;

bool HitCollector::open(QString *error)
{
    return m_sink->open(error);
}

quint16 HitCollector::listen(const QHostAddress &address, quint16 port, QString *error)
{
    const quint16 listening = m_intake.listen(address, port);
    if (!listening)
        *error = QStringLiteral("can't listen on port %1").arg(port);
    return listening;
}

void HitCollector::receive(const HttpIntake::Request &request, HttpIntake::Responder respond)
{
    const QByteArray &path = request.path, &method = request.method, &body = request.body, &encoding = request.contentEncoding;
    const bool single = path == "/collect";
    const auto refuse = [&respond](int status, const QByteArray &why) { respond(Answer{status, why + '\n'}); };
    if (!single && path != "/batch")
        return refuse(404, "not found");
    if (method != "POST" && !(single && method == "GET"))
        return refuse(405, "method not allowed");
    if (const int status = single ? collectStatusOverride : batchStatusOverride)
        return refuse(status, "unavailable");
    if (body.size() > maxBodyBytes)
        return refuse(413, "body too large");

    QByteArray payload = single && method == "GET" ? request.query : body;
    if (encoding == "gzip" || encoding == "deflate") {
        QByteArray inflated;
        if (!Compression::decompress(body, encoding == "gzip" ? Compression::Format::Gzip : Compression::Format::Deflate,
                                     maxInflatedBytes, inflated))
            return refuse(400, "body does not decompress");
        payload = inflated;
    } else if (!encoding.isEmpty() && encoding != "identity") {
        return refuse(415, "unknown content encoding");
    }
    const QList<QByteArray> lines = payload.split('\n');
    if (single && lines.size() > 2)
        return refuse(400, "one hit only; use /batch");

    qsizetype valid = 0, rejected = 0;
    QString firstReason;
    for (const QByteArray &line : lines) {
        if (line.trimmed().isEmpty())
            continue;
        QString why;
        if (auto hit = CollectedHit::parse(line.trimmed(), &why)) {
            m_hits.append(*hit);
            ++valid;
        } else {
            ++m_rejections[why];
            ++rejected;
            if (firstReason.isEmpty())
                firstReason = why;
        }
    }
    // A request of nothing valid is answered now: the app deletes it on any answer, so its
    // rejections need not be committed first.
    if (!valid && single)
        respond(Answer{400, (firstReason.isEmpty() ? QStringLiteral("no hit") : firstReason).toUtf8() + '\n'});
    else if (!valid)
        respond(Answer{200, QByteArrayLiteral("0 stored, ") + QByteArray::number(rejected) + " rejected\n"});
    else
        m_waiting.append({valid, single ? Answer{200, pixel, "image/gif"}
                                        : Answer{200, QByteArray::number(valid) + " stored, " + QByteArray::number(rejected) + " rejected\n"},
                          std::move(respond)});
    if (!m_commitScheduled && (valid || rejected)) {
        m_commitScheduled = true;
        // Tied to the intake, which goes with the collector: a commit never outlives it.
        QTimer::singleShot(0, Qt::PreciseTimer, &m_intake, [this] { commit(); });
    }
}

void HitCollector::commit()
{
    m_commitScheduled = false;
    while (!m_waiting.isEmpty() || !m_rejections.isEmpty()) {
        // Whole requests, up to the limit (a request alone may pass it).
        qsizetype requests = 0, hits = 0;
        while (requests < m_waiting.size() && (requests == 0 || hits + m_waiting.at(requests).hits <= maxHitsPerCommit))
            hits += m_waiting.at(requests++).hits;
        QString error;
        const bool stored = m_sink->store(HitSink::mergeCopies(m_hits.mid(0, hits)), m_rejections, &error);
        m_hits.remove(0, hits);
        const QList<Waiting> answered = m_waiting.mid(0, requests);
        m_waiting.remove(0, requests);
        if (stored)
            m_rejections.clear();
        // Said once a failure and once a recovery: a collector whose database is down for a
        // minute under load would otherwise write a line per request.
        if (stored == m_failing)
            qWarning().noquote() << "velmora-catalogue collect:"
                                 << (stored ? QStringLiteral("storing hits again")
                                            : QStringLiteral("hits not stored, requests go unanswered until the store takes them: ") + error);
        m_failing = !stored;
        for (const Waiting &waiting : answered)
            waiting.respond(stored ? std::optional<Answer>(waiting.answer) : std::nullopt);
        if (!stored)
            break;
    }
    // What failed to store waits for no one: the rest of this round goes unanswered too, and
    // the clients send again.
    for (const Waiting &waiting : std::exchange(m_waiting, {}))
        waiting.respond(std::nullopt);
    m_hits.clear();
}

bool HitCollector::summary(const QString &location, QJsonObject &out, QString *error)
{
    return HitSink::forLocation(location)->summary(out, error);
}

#include "map/TileDecoder.h"

#include "map/MBTilesPack.h"

#include <QMutexLocker>

namespace {
// Decoded pictures wait here only until the next frame takes them; a view that moved on leaves
// a few behind, dropped past this many.
constexpr qsizetype keptWaiting = 64;
}

TileDecoder::TileDecoder(QObject *parent)
    : QObject(parent)
{
    // One decoder: tiles come in the order asked, and one connection serves them all.
    m_pool.setMaxThreadCount(1);
    m_pool.setExpiryTimeout(5000);
}

TileDecoder::~TileDecoder()
{
    setPack(QString());
}

quint64 TileDecoder::keyOf(int zoom, int column, int row)
{
    return (quint64(zoom) << 48) | (quint64(quint32(column)) << 24) | quint64(quint32(row));
}

void TileDecoder::setPack(const QString &path)
{
    {
        QMutexLocker lock(&m_mutex);
        ++m_generation;
        m_pending.clear();
    }
    m_pool.waitForDone();
    QMutexLocker lock(&m_mutex);
    m_path = path;
    m_decoded.clear();
    m_connection.reset();
}

TileDecoder::State TileDecoder::take(int zoom, int column, int row, QImage *image)
{
    const quint64 key = keyOf(zoom, column, row);
    QMutexLocker lock(&m_mutex);
    if (m_path.isEmpty())
        return State::Missing;
    if (const auto found = m_decoded.constFind(key); found != m_decoded.constEnd()) {
        *image = *found;
        m_decoded.erase(found);
        return image->isNull() ? State::Missing : State::Ready;
    }
    if (!m_pending.contains(key)) {
        m_pending.insert(key);
        const int generation = m_generation;
        m_pool.start([this, key, generation] { decode(key, generation); });
    }
    return State::Pending;
}

void TileDecoder::decode(quint64 key, int generation)
{
    QString path;
    {
        QMutexLocker lock(&m_mutex);
        if (generation != m_generation)
            return;
        path = m_path;
    }
    // Only this thread touches the connection, and setPack waits for it before replacing it.
    if (!m_connection) {
        auto pack = std::make_unique<MBTilesPack>();
        QString error;
        if (pack->open(path, QRectF(), &error))
            m_connection = std::move(pack);
    }
    const int zoom = int(key >> 48), column = int((key >> 24) & 0xffffff), row = int(key & 0xffffff);
    const QImage image = m_connection ? m_connection->tile(zoom, column, row) : QImage();
    {
        QMutexLocker lock(&m_mutex);
        if (generation != m_generation)
            return;
        m_pending.remove(key);
        if (m_decoded.size() >= keptWaiting)
            m_decoded.clear();
        m_decoded.insert(key, image);
    }
    emit tileReady();
}

void TileDecoder::waitForDone()
{
    m_pool.waitForDone();
}

#include "map/StreetTiles.h"

#include "map/MBTilesPack.h"
#include "map/VectorTileRenderer.h"

#include <QLoggingCategory>
#include <QMutexLocker>

Q_DECLARE_LOGGING_CATEGORY(lcMapTiles)

namespace {

quint64 sourceKey(int zoom, int column, int row) { return (quint64(zoom) << 48) | (quint64(column) << 24) | quint64(row); }
constexpr int keptDecodedTiles = 12;
// More than a phone's screen holds at any zoom.
constexpr int keptRecentPictures = 32;
// A view asks for each of its tiles every frame, some twenty at a time: a queued tile not asked
// for in the last dozen frames or so is off screen.
constexpr quint64 staleAsks = 256;
// Past this many, bad tiles are counted but no longer logged: one damaged pack says so once.
constexpr int loggedBadTiles = 5;

}

StreetTiles::StreetTiles(QObject *parent)
    : QObject(parent)
{
    // Two drawers keep a pan fed without taking a phone's every core.
    m_pool.setMaxThreadCount(2);
    m_pool.setExpiryTimeout(5000);
}

StreetTiles::~StreetTiles()
{
    close();
}

bool StreetTiles::open(const QString &path, const QRectF &expectedRegion, QString *error)
{
    MBTilesPack pack;
    return pack.open(path, expectedRegion, error) && open(std::move(pack), expectedRegion, error);
}

bool StreetTiles::open(MBTilesPack &&pack, const QRectF &expectedRegion, QString *error)
{
    close();
    if (!pack.isVector()) {
        *error = QStringLiteral("%1: its tiles are pictures, not a street map").arg(pack.path());
        return false;
    }
    QMutexLocker lock(&m_mutex);
    m_path = pack.path();
    m_region = expectedRegion;
    m_minZoom = pack.minZoom();
    m_maxZoom = pack.maxZoom();
    m_connections.push_back(std::make_unique<MBTilesPack>(std::move(pack)));
    return true;
}

void StreetTiles::close()
{
    {
        QMutexLocker lock(&m_mutex);
        ++m_generation;
    }
    m_pool.clear();
    m_pool.waitForDone();
    QMutexLocker lock(&m_mutex);
    m_path.clear();
    m_pictures.clear();
    m_lastUsed.clear();
    m_pictureBytes = 0;
    m_pending.clear();
    m_badSources.clear();
    m_decoded.clear();
    m_decodedOrder.clear();
    m_connections.clear();
}

bool StreetTiles::isOpen() const
{
    QMutexLocker lock(&m_mutex);
    return !m_path.isEmpty();
}

QImage StreetTiles::tile(int zoom, int column, int row, qreal devicePixelRatio)
{
    QMutexLocker lock(&m_mutex);
    if (m_path.isEmpty() || zoom < m_minZoom || zoom > maxDisplayZoom || column < 0 || row < 0 || column >= (1 << zoom)
        || row >= (1 << zoom))
        return {};
    const Key key{zoom, column, row, devicePixelRatio};
    const auto found = m_pictures.constFind(key);
    if (found != m_pictures.cend()) {
        m_lastUsed[key] = ++m_clock;
        return *found;
    }
    const auto pending = m_pending.find(key);
    if (pending != m_pending.end()) {
        *pending = ++m_asks;
        return {};
    }
    m_pending.insert(key, ++m_asks);
    const int generation = m_generation;
    m_pool.start([this, key, generation] { draw(key, generation); });
    return {};
}

QImage StreetTiles::peek(int zoom, int column, int row, qreal devicePixelRatio) const
{
    QMutexLocker lock(&m_mutex);
    return m_pictures.value(Key{zoom, column, row, devicePixelRatio});
}

int StreetTiles::pendingCount() const
{
    QMutexLocker lock(&m_mutex);
    return int(m_pending.size());
}

int StreetTiles::badTileCount() const
{
    QMutexLocker lock(&m_mutex);
    return int(m_badSources.size());
}

qsizetype StreetTiles::pictureBytes() const
{
    QMutexLocker lock(&m_mutex);
    return m_pictureBytes;
}

void StreetTiles::waitForDone()
{
    m_pool.waitForDone();
}

std::unique_ptr<MBTilesPack> StreetTiles::takeConnection()
{
    {
        QMutexLocker lock(&m_mutex);
        if (!m_connections.empty()) {
            std::unique_ptr<MBTilesPack> pack = std::move(m_connections.back());
            m_connections.pop_back();
            return pack;
        }
    }
    auto pack = std::make_unique<MBTilesPack>();
    QString error;
    return pack->open(m_path, m_region, &error) ? std::move(pack) : nullptr;
}

void StreetTiles::giveBack(std::unique_ptr<MBTilesPack> pack)
{
    QMutexLocker lock(&m_mutex);
    m_connections.push_back(std::move(pack));
}

std::shared_ptr<const VectorTile> StreetTiles::sourceTile(int zoom, int column, int row, bool *bad)
{
    const quint64 key = sourceKey(zoom, column, row);
    {
        QMutexLocker lock(&m_mutex);
        if (m_badSources.contains(key)) {
            *bad = true;
            return nullptr;
        }
        if (auto found = m_decoded.value(key))
            return found;
    }
    std::unique_ptr<MBTilesPack> pack = takeConnection();
    if (!pack)
        return nullptr;
    const QByteArray data = pack->tileData(zoom, column, row);
    giveBack(std::move(pack));
    if (data.isEmpty())
        return nullptr; // nothing of the street map here: an empty picture
    auto tile = std::make_shared<VectorTile>();
    QString error;
    if (!decodeVectorTile(data, *tile, &error)) {
        QMutexLocker lock(&m_mutex);
        m_badSources.insert(key);
        if (m_badSources.size() <= loggedBadTiles)
            qCWarning(lcMapTiles).noquote() << "street map" << m_path << "tile at zoom" << zoom << "column" << column << "row" << row
                                            << "is skipped:" << error
                                            << (m_badSources.size() == loggedBadTiles ? "(further bad tiles are not logged)" : "");
        *bad = true;
        return nullptr;
    }
    QMutexLocker lock(&m_mutex);
    m_decoded.insert(key, tile);
    m_decodedOrder.append(key);
    while (m_decodedOrder.size() > keptDecodedTiles)
        m_decoded.remove(m_decodedOrder.takeFirst());
    return tile;
}

void StreetTiles::draw(Key key, int generation)
{
    {
        QMutexLocker lock(&m_mutex);
        if (generation != m_generation)
            return;
        if (m_asks - m_pending.value(key) > staleAsks) {
            m_pending.remove(key);
            return;
        }
    }
    // Past the pack's last zoom, the display tile is a part of one of its tiles.
    const int levels = std::max(0, key.zoom - m_maxZoom);
    const int sourceZoom = key.zoom - levels;
    const int column = key.column >> levels, row = key.row >> levels;
    bool bad = false;
    const std::shared_ptr<const VectorTile> source = sourceTile(sourceZoom, column, row, &bad);
    QImage picture;
    if (source) {
        const double part = 1.0 / double(1 << levels);
        VectorTileRendering rendering;
        rendering.zoom = key.zoom;
        rendering.source = QRectF((key.column - (column << levels)) * part, (key.row - (row << levels)) * part, part, part);
        rendering.devicePixelRatio = key.ratio;
        picture = renderVectorTile(*source, rendering);
    }
    {
        QMutexLocker lock(&m_mutex);
        if (generation != m_generation)
            return;
        m_pending.remove(key);
        // An empty or bad tile is kept as an empty picture, so it isn't asked for again.
        if (picture.isNull())
            picture = QImage(1, 1, QImage::Format_ARGB32_Premultiplied), picture.fill(Qt::transparent);
        m_pictures.insert(key, picture);
        m_lastUsed[key] = ++m_clock;
        m_pictureBytes += picture.sizeInBytes();
        evictLocked();
    }
    emit tileReady();
}

void StreetTiles::evictLocked()
{
    if (m_pictureBytes <= pictureBudgetBytes)
        return;
    QList<std::pair<quint64, Key>> byAge;
    for (auto it = m_lastUsed.cbegin(); it != m_lastUsed.cend(); ++it)
        byAge.append({it.value(), it.key()});
    std::sort(byAge.begin(), byAge.end(), [](const auto &a, const auto &b) { return a.first < b.first; });
    // The most recently used stay whatever they weigh: on a dense screen a view's own tiles may
    // outweigh the budget, and evicting them would have them drawn again every frame.
    for (qsizetype i = 0; i < byAge.size() - keptRecentPictures && m_pictureBytes > pictureBudgetBytes * 3 / 4; ++i) {
        m_pictureBytes -= m_pictures.take(byAge.at(i).second).sizeInBytes();
        m_lastUsed.remove(byAge.at(i).second);
    }
}

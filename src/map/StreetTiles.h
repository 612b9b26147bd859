#pragma once

#include "map/VectorTile.h"

#include <QHash>
#include <QImage>
#include <QMutex>
#include <QObject>
#include <QSet>
#include <QThreadPool>

#include <memory>
#include <vector>

class MBTilesPack;

// The street map's tiles for the view: vector tiles from a pack, decoded and drawn on worker
// threads, kept as pictures per display tile. Asking never waits: a tile not drawn yet is
// queued and `tileReady` says when it is. Zooms past the pack's last one draw the last zoom's
// vectors at the display's scale. A tile that doesn't decode is logged once and left empty; the
// others draw.
class StreetTiles : public QObject
{
    Q_OBJECT

public:
    // The deepest display zoom drawn, and the memory the pictures may take (the tiles of the
    // latest frames are kept even beyond it).
    static constexpr int maxDisplayZoom = 19;
    static constexpr qsizetype pictureBudgetBytes = 24 * 1024 * 1024;

    explicit StreetTiles(QObject *parent = nullptr);
    ~StreetTiles() override;

    // Takes a vector pack; false with the reason for anything else.
    bool open(const QString &path, const QRectF &expectedRegion, QString *error);
    // Takes a pack already opened (the workers open more connections to its file as needed).
    bool open(MBTilesPack &&pack, const QRectF &expectedRegion, QString *error);
    void close();
    bool isOpen() const;
    int minZoom() const { return m_minZoom; }
    int maxZoom() const { return m_maxZoom; }

    // The display tile's picture if drawn, else null (and it is queued). Safe from any thread.
    QImage tile(int zoom, int column, int row, qreal devicePixelRatio);
    // The picture if drawn, without queueing anything.
    QImage peek(int zoom, int column, int row, qreal devicePixelRatio) const;
    // Tiles drawn, queued or known bad, for tests and the benchmark.
    int pendingCount() const;
    int badTileCount() const;
    qsizetype pictureBytes() const;
    // Blocks until every queued tile is drawn (tests and benchmarks).
    void waitForDone();

signals:
    // Emitted on a worker thread; connect with a queued connection.
    void tileReady();

private:
    struct Key {
        int zoom, column, row;
        qreal ratio;
        bool operator==(const Key &) const = default;
    };
    friend size_t qHash(const Key &key, size_t seed) { return qHashMulti(seed, key.zoom, key.column, key.row, key.ratio); }

    void draw(Key key, int generation);
    std::shared_ptr<const VectorTile> sourceTile(int zoom, int column, int row, bool *bad);
    std::unique_ptr<MBTilesPack> takeConnection();
    void giveBack(std::unique_ptr<MBTilesPack> pack);
    void evictLocked();

    mutable QMutex m_mutex;
    QString m_path;
    QRectF m_region;
    int m_minZoom = 0;
    int m_maxZoom = 0;
    int m_generation = 0;
    QHash<Key, QImage> m_pictures;
    QHash<Key, quint64> m_lastUsed;
    quint64 m_clock = 0;
    qsizetype m_pictureBytes = 0;
    // Queued tiles, with the number of the ask that last wanted each: one nobody has asked for
    // in a while (the view moved on) is dropped when its turn comes, and asked again if wanted.
    QHash<Key, quint64> m_pending;
    quint64 m_asks = 0;
    QSet<quint64> m_badSources;
    // Decoded source tiles, shared by the display tiles that zoom into them.
    QHash<quint64, std::shared_ptr<const VectorTile>> m_decoded;
    QList<quint64> m_decodedOrder;
    std::vector<std::unique_ptr<MBTilesPack>> m_connections;
    QThreadPool m_pool;
};

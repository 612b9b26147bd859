#pragma once

#include <QHash>
#include <QImage>
#include <QMutex>
#include <QObject>
#include <QSet>
#include <QThreadPool>

#include <memory>

class MBTilesPack;

// Base-map pictures read and decoded on a thread of their own, so that a zoom bringing a
// screenful of new tiles shows the coarser ones it has meanwhile instead of decoding them all in
// one frame. Asking never waits; `tileReady` says when a queued tile is there.
class TileDecoder : public QObject
{
    Q_OBJECT

public:
    enum class State { Ready, Pending, Missing };

    explicit TileDecoder(QObject *parent = nullptr);
    ~TileDecoder() override;

    // The raster pack to read (its own connection to the file); an empty path closes it.
    void setPack(const QString &path);
    // Ready with the picture (handed over, not kept), Pending once queued, or Missing when the
    // pack has no tile there or its picture doesn't decode. Main thread.
    State take(int zoom, int column, int row, QImage *image);
    // Blocks until every queued tile is decoded (tests and benchmarks).
    void waitForDone();

signals:
    // Emitted on the decoding thread; connect with a queued connection.
    void tileReady();

private:
    static quint64 keyOf(int zoom, int column, int row);
    void decode(quint64 key, int generation);

    QMutex m_mutex;
    QString m_path;
    int m_generation = 0;
    QHash<quint64, QImage> m_decoded; // null images: known gaps
    QSet<quint64> m_pending;
    std::unique_ptr<MBTilesPack> m_connection; // the decoding thread's
    QThreadPool m_pool;
};

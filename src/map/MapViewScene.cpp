// The map view's scene-graph side: what each frame shows (background, grid, base map tiles,
// street tiles, pins) and the textures kept between frames.
#include "map/MapView.h"

#include <QLoggingCategory>
#include <QQuickWindow>
#include <QSGImageNode>
#include <QSGRectangleNode>
#include <QSGTexture>
#include <QSGTransformNode>

#include <algorithm>
#include <cmath>

namespace {

const QColor backgroundColor(0xec, 0xe8, 0xdf);
const QColor gridColor(0xd6, 0xd0, 0xc3);
// Tile pictures kept as textures beyond those on screen, so panning back costs nothing.
constexpr int keptTextures = 160;
// Street pictures are drawn for each display zoom and carry labels, so fewer are kept.
constexpr int keptStreetTextures = 48;

quint64 tileKey(int zoom, int column, int row) { return (quint64(zoom) << 48) | (quint64(column) << 24) | quint64(row); }

// The scene-graph side of the view: fixed children in drawing order, and the tile textures.
class MapRootNode : public QSGNode
{
public:
    ~MapRootNode() override
    {
        qDeleteAll(textures);
        qDeleteAll(streetTextures);
    }

    QSGRectangleNode *background = nullptr;
    // Containers whose children change every frame are transform nodes: the renderers then place
    // a child added after the view moved between screens where the view now is.
    QSGTransformNode *grid = nullptr;
    QSGTransformNode *tiles = nullptr;
    QSGTransformNode *streets = nullptr;
    QHash<quint64, QSGTexture *> streetTextures;
    QHash<quint64, quint64> streetLastUsed;
    qreal streetRatio = 0;
    QSGImageNode *pins = nullptr;
    QHash<quint64, QSGTexture *> textures;
    QHash<quint64, quint64> lastUsed; // frame number
    quint64 frame = 0;
    int packGeneration = -1;
};

// Forgets the longest unused textures (and known gaps) beyond what is kept.
void forgetOldest(QHash<quint64, QSGTexture *> &textures, QHash<quint64, quint64> &lastUsed, int kept, quint64 frame)
{
    if (lastUsed.size() <= kept)
        return;
    QList<std::pair<quint64, quint64>> byAge;
    for (auto it = lastUsed.cbegin(); it != lastUsed.cend(); ++it)
        byAge.append({it.value(), it.key()});
    std::sort(byAge.begin(), byAge.end());
    for (qsizetype i = 0; i < byAge.size() - kept && byAge.at(i).first < frame; ++i) {
        delete textures.take(byAge.at(i).second);
        lastUsed.remove(byAge.at(i).second);
    }
}

struct TileAddress {
    int zoom, column, row;
};

// Tile nodes are kept from frame to frame and given their new tiles in order: a pan changes
// their pictures and places, not the scene graph's shape.
class TileNodes
{
public:
    TileNodes(QSGNode *parent, QQuickWindow *window)
        : m_parent(parent)
        , m_window(window)
        , m_next(parent->firstChild())
    {
    }
    ~TileNodes()
    {
        // Nodes this frame didn't use go.
        while (m_next) {
            QSGNode *spare = m_next;
            m_next = m_next->nextSibling();
            m_parent->removeChildNode(spare);
            delete spare;
        }
    }

    // Shows the `wanted` tile with the picture of `found`, the tile itself or one of its
    // ancestors (then the part of it that covers the wanted one), in whole pixels on screen so
    // neighbouring tiles meet without a hairline.
    void show(QSGTexture *texture, const MapCamera &camera, TileAddress wanted, TileAddress found)
    {
        auto *node = static_cast<QSGImageNode *>(m_next);
        const bool fresh = !node;
        if (fresh) {
            node = m_window->createImageNode();
            node->setOwnsTexture(false);
            node->setFiltering(QSGTexture::Linear);
        } else {
            m_next = m_next->nextSibling();
        }
        const int levels = wanted.zoom - found.zoom;
        const QSizeF part = QSizeF(texture->textureSize()) / double(1 << levels);
        const QRectF area = TileMath::tileRect(wanted.zoom, wanted.column, wanted.row);
        const QPointF topLeft = camera.toScreen(area.topLeft());
        const QPointF bottomRight = camera.toScreen(area.bottomRight());
        node->setTexture(texture);
        node->setRect(QRectF(QPointF(std::floor(topLeft.x()), std::floor(topLeft.y())),
                             QPointF(std::ceil(bottomRight.x()), std::ceil(bottomRight.y()))));
        node->setSourceRect(QRectF((wanted.column - (found.column << levels)) * part.width(),
                                   (wanted.row - (found.row << levels)) * part.height(), part.width(), part.height()));
        // Added once it has its picture: the software renderer reads it as soon as it is added.
        if (fresh)
            m_parent->appendChildNode(node);
    }

private:
    QSGNode *m_parent;
    QQuickWindow *m_window;
    QSGNode *m_next;
};

void removeChildren(QSGNode *node)
{
    while (QSGNode *child = node->firstChild()) {
        node->removeChildNode(child);
        delete child;
    }
}

}

QSGNode *MapView::updatePaintNode(QSGNode *oldNode, UpdatePaintNodeData *)
{
    QElapsedTimer timer;
    timer.start();
    QQuickWindow *win = window();
    auto *root = static_cast<MapRootNode *>(oldNode);
    if (!root) {
        root = new MapRootNode;
        root->background = win->createRectangleNode();
        root->background->setColor(backgroundColor);
        root->grid = new QSGTransformNode;
        root->tiles = new QSGTransformNode;
        root->streets = new QSGTransformNode;
        root->pins = win->createImageNode();
        root->pins->setOwnsTexture(true);
        root->pins->setFiltering(QSGTexture::Linear);
        root->appendChildNode(root->background);
        root->appendChildNode(root->grid);
        root->appendChildNode(root->tiles);
        root->appendChildNode(root->streets);
        root->appendChildNode(root->pins);
    }
    ++root->frame;
    const QRectF bounds(0, 0, width(), height());
    root->background->setRect(bounds);
    const QRectF visible = m_camera.visibleWorld();

    // Without a base map, a grid of tile edges shows the map moving.
    removeChildren(root->grid);
    if (!m_pack.isOpen()) {
        const int zoom = int(std::floor(m_camera.zoom));
        const double step = 1.0 / double(1 << zoom);
        for (double x = std::floor(visible.left() / step) * step; x <= visible.right(); x += step) {
            QSGRectangleNode *line = win->createRectangleNode();
            line->setColor(gridColor);
            line->setRect(QRectF(m_camera.toScreen(QPointF(x, 0)).x(), 0, 1, height()));
            root->grid->appendChildNode(line);
        }
        for (double y = std::floor(visible.top() / step) * step; y <= visible.bottom(); y += step) {
            QSGRectangleNode *line = win->createRectangleNode();
            line->setColor(gridColor);
            line->setRect(QRectF(0, m_camera.toScreen(QPointF(0, y)).y(), width(), 1));
            root->grid->appendChildNode(line);
        }
    }

    // Tiles of the zoom nearest the camera's; a missing one borrows a part of an ancestor.
    if (root->packGeneration != m_packGeneration) {
        // No node may keep a texture about to go.
        removeChildren(root->tiles);
        removeChildren(root->streets);
        qDeleteAll(root->textures);
        root->textures.clear();
        root->lastUsed.clear();
        qDeleteAll(root->streetTextures);
        root->streetTextures.clear();
        root->streetLastUsed.clear();
        root->packGeneration = m_packGeneration;
    }
    TileNodes tiles(root->tiles, win);
    if (m_pack.isOpen() && !bounds.isEmpty()) {
        const int zoom = std::clamp(int(std::lround(m_camera.zoom)), m_pack.minZoom(), m_pack.maxZoom());
        const QPoint first = TileMath::tileAt(visible.topLeft(), zoom);
        const QPoint last = TileMath::tileAt(visible.bottomRight(), zoom);
        // The texture of a tile, made from its picture when it has one: read here and now, or
        // asked of the decoder (`pending` while it is at it).
        const auto textureOf = [&](int z, int c, int r, bool now, bool &pending) -> QSGTexture * {
            const quint64 key = tileKey(z, c, r);
            QSGTexture *texture = root->textures.value(key);
            if (!texture && !root->lastUsed.contains(key)) {
                QImage image;
                if (now)
                    image = m_pack.tile(z, c, r);
                else if (m_tileDecoder.take(z, c, r, &image) == TileDecoder::State::Pending) {
                    pending = true;
                    return nullptr;
                }
                if (!image.isNull()) {
                    texture = win->createTextureFromImage(image);
                    root->textures.insert(key, texture);
                }
            }
            root->lastUsed.insert(key, root->frame); // a known gap isn't read again
            return texture;
        };
        for (int row = first.y(); row <= last.y(); ++row) {
            for (int column = first.x(); column <= last.x(); ++column) {
                int z = zoom, c = column, r = row;
                QSGTexture *texture = nullptr;
                bool pending = false;
                // A coarser tile shows while the decoder makes this one; with nothing at all to
                // show (the first frame, a pan onto new ground) the tile is read at once, as a
                // blank would be worse than a late frame.
                for (const bool now : {false, true}) {
                    if (now && (texture || !pending))
                        break;
                    for (z = zoom, c = column, r = row; z >= m_pack.minZoom() && zoom - z <= 10; --z, c /= 2, r /= 2)
                        if ((texture = textureOf(z, c, r, now, pending)))
                            break;
                }
                if (!texture)
                    continue;
                tiles.show(texture, m_camera, {zoom, column, row}, {z, c, r});
            }
        }
        forgetOldest(root->textures, root->lastUsed, keptTextures, root->frame);
    }
    updateStreets(root, win);

    // Every pin (and the user's position) in one picture.
    const qreal ratio = win->effectiveDevicePixelRatio();
    renderPins(ratio);
    if (!m_pinsImage.isNull()) {
        root->pins->setTexture(win->createTextureFromImage(m_pinsImage, QQuickWindow::TextureHasAlphaChannel));
        root->pins->setRect(bounds);
    }
    m_lastFrameNanoseconds = timer.nsecsElapsed();
    return root;
}

void MapView::updateStreets(QSGNode *rootNode, QQuickWindow *win)
{
    auto *root = static_cast<MapRootNode *>(rootNode);
    const qreal ratio = win->effectiveDevicePixelRatio();
    if (root->streetRatio != ratio) {
        removeChildren(root->streets);
        qDeleteAll(root->streetTextures);
        root->streetTextures.clear();
        root->streetLastUsed.clear();
        root->streetRatio = ratio;
    }
    TileNodes tiles(root->streets, win);
    // Half a zoom before the pack's first, the streets come in; each display zoom draws its own
    // pictures, so widths and labels are right for it and never stretched.
    if (!m_streets.isOpen() || width() <= 0 || height() <= 0 || m_camera.zoom < m_streets.minZoom() - 0.5)
        return;
    const int zoom = std::clamp(int(std::lround(m_camera.zoom)), m_streets.minZoom(), StreetTiles::maxDisplayZoom);
    const QRectF visible = m_camera.visibleWorld();
    const QPoint first = TileMath::tileAt(visible.topLeft(), zoom);
    const QPoint last = TileMath::tileAt(visible.bottomRight(), zoom);
    for (int row = first.y(); row <= last.y(); ++row) {
        for (int column = first.x(); column <= last.x(); ++column) {
            // Until its own picture is drawn, a tile shows the part of a coarser one already drawn.
            QImage picture = m_streets.tile(zoom, column, row, ratio);
            int z = zoom, c = column, r = row;
            for (; picture.isNull() && z > m_streets.minZoom() && zoom - z < 3;) {
                --z, c /= 2, r /= 2;
                picture = m_streets.peek(z, c, r, ratio);
            }
            if (picture.isNull() || picture.width() <= 1)
                continue;
            const quint64 key = tileKey(z, c, r);
            QSGTexture *texture = root->streetTextures.value(key);
            if (!texture) {
                texture = win->createTextureFromImage(picture, QQuickWindow::TextureHasAlphaChannel);
                root->streetTextures.insert(key, texture);
            }
            root->streetLastUsed.insert(key, root->frame);
            tiles.show(texture, m_camera, {zoom, column, row}, {z, c, r});
        }
    }
    forgetOldest(root->streetTextures, root->streetLastUsed, keptStreetTextures, root->frame);
}

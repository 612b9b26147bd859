#pragma once

#include <QColor>
#include <QList>
#include <QQuickPaintedItem>
#include <QRectF>
#include <QtQml/qqmlregistration.h>

#include <optional>

// A gradient, linear or radial, with optional borders one device pixel (or one point) wide;
// the shade under the discover feed's titles. While `dimmed`, it draws `dimmedColors`, or with
// none and `automaticallyDims`, its colours made grey.
class GradientView : public QQuickPaintedItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QList<QColor> colors READ colors WRITE setColors NOTIFY gradientChanged)
    Q_PROPERTY(QList<QColor> dimmedColors READ dimmedColors WRITE setDimmedColors NOTIFY gradientChanged)
    Q_PROPERTY(bool automaticallyDims READ automaticallyDims WRITE setAutomaticallyDims NOTIFY gradientChanged)
    Q_PROPERTY(QList<qreal> locations READ locations WRITE setLocations NOTIFY gradientChanged)
    Q_PROPERTY(Mode mode READ mode WRITE setMode NOTIFY appearanceChanged)
    Q_PROPERTY(Direction direction READ direction WRITE setDirection NOTIFY appearanceChanged)
    Q_PROPERTY(bool drawsThinBorders READ drawsThinBorders WRITE setDrawsThinBorders NOTIFY appearanceChanged)
    Q_PROPERTY(QColor topBorderColor MEMBER m_topBorder WRITE setTopBorderColor NOTIFY appearanceChanged)
    Q_PROPERTY(QColor rightBorderColor MEMBER m_rightBorder WRITE setRightBorderColor NOTIFY appearanceChanged)
    Q_PROPERTY(QColor bottomBorderColor MEMBER m_bottomBorder WRITE setBottomBorderColor NOTIFY appearanceChanged)
    Q_PROPERTY(QColor leftBorderColor MEMBER m_leftBorder WRITE setLeftBorderColor NOTIFY appearanceChanged)
    Q_PROPERTY(bool dimmed READ dimmed WRITE setDimmed NOTIFY gradientChanged)

public:
    enum Mode { Linear, Radial };
    Q_ENUM(Mode)
    enum Direction { Vertical, Horizontal };
    Q_ENUM(Direction)

    explicit GradientView(QQuickItem *parent = nullptr);

    QList<QColor> colors() const { return m_colors; }
    void setColors(const QList<QColor> &colors);
    QList<QColor> dimmedColors() const { return m_dimmedColors; }
    void setDimmedColors(const QList<QColor> &colors);
    bool automaticallyDims() const { return m_automaticallyDims; }
    void setAutomaticallyDims(bool dims); // only stores the flag
    QList<qreal> locations() const { return m_locations; }
    void setLocations(const QList<qreal> &locations);
    Mode mode() const { return m_mode; }
    void setMode(Mode mode);
    Direction direction() const { return m_direction; }
    void setDirection(Direction direction);
    bool drawsThinBorders() const { return m_thinBorders; }
    void setDrawsThinBorders(bool thin);
    void setTopBorderColor(const QColor &color);
    void setRightBorderColor(const QColor &color);
    void setBottomBorderColor(const QColor &color);
    void setLeftBorderColor(const QColor &color);
    bool dimmed() const { return m_dimmed; }
    void setDimmed(bool dimmed); // the platform's dimmed tint; rebuilds when dimming automatically

    // The colours the gradient is built from now; empty: no gradient.
    QList<QColor> gradientColors() const { return m_gradientColors; }
    // Where each set border is drawn, top, right, bottom, left, for a size and a screen scale.
    QList<std::pair<QColor, QRectF>> borderRects(QSizeF size, qreal scale) const;

    void paint(QPainter *painter) override;

signals:
    void gradientChanged();
    void appearanceChanged();

private:
    void rebuildGradient();
    QList<QColor> effectiveColors() const;

    QList<QColor> m_colors;
    QList<QColor> m_dimmedColors;
    bool m_automaticallyDims = true;
    QList<qreal> m_locations;
    Mode m_mode = Linear;
    Direction m_direction = Vertical;
    bool m_thinBorders = true;
    QColor m_topBorder;
    QColor m_rightBorder;
    QColor m_bottomBorder;
    QColor m_leftBorder;
    bool m_dimmed = false;
    QList<QColor> m_gradientColors;
};

#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

// A view whose background keeps the first colour it is given: a highlighted cell clears its
// subviews' backgrounds, and the shadow line of a card must survive that.
class ShadowView : public QQuickPaintedItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor backgroundColor READ backgroundColor WRITE setBackgroundColor NOTIFY backgroundColorChanged)

public:
    explicit ShadowView(QQuickItem *parent = nullptr);

    QColor backgroundColor() const { return m_defaultBGColor.value_or(QColor(Qt::transparent)); }
    void setBackgroundColor(const QColor &color);
    void paint(QPainter *painter) override;

signals:
    void backgroundColorChanged();

private:
    std::optional<QColor> m_defaultBGColor;
};

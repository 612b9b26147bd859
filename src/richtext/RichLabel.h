#pragma once

#include "richtext/RichTextLayout.h"

#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

// Draws an attributed string made by RichString::render, as a label does: it wraps at its
// width, elides on its last allowed line, and reports an implicit size so it sits in layouts
// and list delegates. `text` takes the rendered value straight from a controller property.
class RichLabel : public QQuickPaintedItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QVariant text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(QFont font READ font WRITE setFont NOTIFY fontChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)
    Q_PROPERTY(int maximumLineCount READ maximumLineCount WRITE setMaximumLineCount NOTIFY maximumLineCountChanged)
    Q_PROPERTY(bool truncated READ truncated NOTIFY layoutChanged)
    Q_PROPERTY(QString plainText READ plainText NOTIFY textChanged)

public:
    explicit RichLabel(QQuickItem *parent = nullptr);

    QVariant text() const { return QVariant::fromValue(m_text); }
    void setText(const QVariant &text);
    QFont font() const { return m_font; }
    void setFont(const QFont &font);
    QColor color() const { return m_color; }
    void setColor(const QColor &color);
    int maximumLineCount() const { return m_maximumLineCount; }
    void setMaximumLineCount(int lines);
    bool truncated() const { return m_layout.isTruncated(); }
    QString plainText() const { return m_text.string(); }

    void paint(QPainter *painter) override;

signals:
    void textChanged();
    void fontChanged();
    void colorChanged();
    void maximumLineCountChanged();
    void layoutChanged();

protected:
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;

private:
    void relayout();

    AttributedString m_text;
    QFont m_font;
    QColor m_color = Qt::black;
    int m_maximumLineCount = 0;
    RichTextLayout m_layout;
};

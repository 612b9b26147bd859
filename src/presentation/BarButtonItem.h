#pragma once

#include <QColor>
#include <QFont>
#include <QObject>
#include <QtQml/qqmlregistration.h>

// One button of a navigation bar: a title (usually an icon glyph), its font and tint. The bar
// draws it; a tap calls trigger(), which emits triggered() for the owning controller.
class BarButtonItem : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Bar items are made by their screen's controller")
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QFont font READ font NOTIFY changed)
    Q_PROPERTY(QColor tintColor READ tintColor NOTIFY changed)
    Q_PROPERTY(QString name READ objectName CONSTANT)
    // A filled, rounded plate behind the title (transparent: none).
    Q_PROPERTY(QColor backgroundColor READ backgroundColor NOTIFY changed)
    // An activity indicator in the title's place; a tap still triggers the item.
    Q_PROPERTY(bool busy READ busy NOTIFY changed)

public:
    BarButtonItem(const QString &name, const QString &title, const QFont &font, QObject *parent = nullptr);
    // The icon font at `size` points: most bar buttons are one glyph of it.
    static QFont iconFont(double size);

    QString title() const { return m_title; }
    QFont font() const { return m_font; }
    QColor tintColor() const { return m_tint; }
    void setTitle(const QString &title);
    void setFont(const QFont &font);
    void setTintColor(const QColor &color);
    QColor backgroundColor() const { return m_background; }
    void setBackgroundColor(const QColor &color);
    bool busy() const { return m_busy; }
    void setBusy(bool busy);

    Q_INVOKABLE void trigger() { emit triggered(); }

signals:
    void changed();
    void triggered();

private:
    QString m_title;
    QFont m_font;
    QColor m_tint = Qt::white;
    QColor m_background = Qt::transparent;
    bool m_busy = false;
};

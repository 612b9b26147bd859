#pragma once

#include <QFont>
#include <QObject>
#include <QVariantMap>
#include <QtQml/qqmlregistration.h>

// The app's look for QML: the colours and fonts of Globals and the icon glyphs, under the names
// the C++ side uses (Theme.colors.barTintColor, Theme.fonts.iconFont, Theme.icons.drawer).
class Theme : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QVariantMap colors READ colors CONSTANT)
    Q_PROPERTY(QVariantMap fonts READ fonts CONSTANT)
    Q_PROPERTY(QVariantMap icons READ icons CONSTANT)

public:
    explicit Theme(QObject *parent = nullptr);

    QVariantMap colors() const { return m_colors; }
    QVariantMap fonts() const { return m_fonts; }
    QVariantMap icons() const { return m_icons; }

    // A style-sheet font name at a size, as the sheets would draw it ("OpenSans-Light", 15).
    Q_INVOKABLE QFont font(const QString &name, double size) const;

private:
    QVariantMap m_colors;
    QVariantMap m_fonts;
    QVariantMap m_icons;
};

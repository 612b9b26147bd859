#pragma once

#include <QHash>
#include <QReadWriteLock>
#include <QString>

#include <optional>

// A concrete face that a style-sheet font name stands for.
struct FontFace {
    QString family;
    int weight = 400; // CSS-like: 300 light, 400 regular, 600 semibold, 700 bold, 800 extrabold
    bool italic = false;

    bool operator==(const FontFace &other) const = default;
};

// The font names the app knows, as the sheets write them ("OpenSans-Bold", "Velmora-Icons").
// The interface layer registers what it has loaded; a name not registered here makes a run with
// no font at all, never a substitute.
class FontRegistry
{
public:
    static FontRegistry &shared();

    void registerFace(const QString &name, const FontFace &face);
    std::optional<FontFace> face(const QString &name) const;

    // The base of every render: the platform's system font and size.
    static QString systemFontName() { return QStringLiteral("System"); }
    static constexpr double systemFontSize = 14.0;

private:
    FontRegistry();
    mutable QReadWriteLock m_lock;
    QHash<QString, FontFace> m_faces;
};

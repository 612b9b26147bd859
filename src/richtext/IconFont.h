#pragma once

#include <QString>

#include <span>

// The glyphs of the font "Velmora-Icons", one character each. They show as icons only in text
// drawn with that font: a sheet rule with "font-name: Velmora-Icons", a label set in
// Globals::iconFont(), or a bar button's title. resources/fonts/make_icon_font.py decides which
// picture stands behind each character.
namespace IconFont {
inline const QString fontName = QStringLiteral("Velmora-Icons");

inline const QString myplacesFull = QStringLiteral("1");
inline const QString notificationsFull = QStringLiteral("2");
inline const QString settingsFull = QStringLiteral("3");
inline const QString infoFull = QStringLiteral("4");
inline const QString browseFull = QStringLiteral("8");
inline const QString mapFull = QStringLiteral("n");
inline const QString browseThin = QStringLiteral("H");
inline const QString mapThin = QStringLiteral("E");
inline const QString myplacesThin = QStringLiteral("A");
inline const QString notificationsThin = QStringLiteral("B");
inline const QString infoThin = QStringLiteral("D");
inline const QString settingsThin = QStringLiteral("C");
inline const QString drawer = QStringLiteral("F");
inline const QString back = QStringLiteral("P");
inline const QString backPlain = QStringLiteral("d");
inline const QString cardRight = QStringLiteral("R");
inline const QString share = QStringLiteral("r");
inline const QString chevronClosed = QStringLiteral("K");
inline const QString chevronOpen = QStringLiteral("L");
inline const QString location = QStringLiteral("M");
inline const QString reserve = QStringLiteral("N");
inline const QString callout = QStringLiteral("O");
inline const QString camera = QStringLiteral("S");
inline const QString call = QStringLiteral("T");
inline const QString callPlain = QStringLiteral("s");
inline const QString delete_ = QStringLiteral("t"); // `delete` is a keyword
inline const QString favoriteOff = QStringLiteral("U");
inline const QString favoriteOn = QStringLiteral("V");
inline const QString visitedOff = QStringLiteral("W");
inline const QString visitedOn = QStringLiteral("X");
inline const QString toVisitOff = QStringLiteral("Y");
inline const QString toVisitOn = QStringLiteral("Z");
inline const QString checkOn = QStringLiteral("e");
inline const QString checkOff = QStringLiteral("f");
inline const QString warning = QStringLiteral("v");
inline const QString mapLocate = QStringLiteral("w");
inline const QString mapMark = QStringLiteral("x");

struct Glyph {
    const char *name;
    const QString *text;
};

// Every glyph under its constant's name, for the interface layer and for checks of the font.
std::span<const Glyph> all();
}

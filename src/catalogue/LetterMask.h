#pragma once

#include <QStringView>
#include <QtGlobal>

// Which characters a short text has, as 64 bits: one bit of its own for each of a-z, 0-9 and
// the lower-case Spanish accented letters and ñ, the other characters sharing the rest by hash.
// A name whose mask lacks a bit of the text's cannot contain the text, which settles most names
// of a keystroke without reading them; and for a character with a bit of its own, a set bit is
// the character itself.
namespace LetterMask {
constexpr int sharedFrom = 43;

constexpr int bitOf(char16_t c)
{
    if (c >= u'a' && c <= u'z')
        return c - u'a';
    if (c >= u'0' && c <= u'9')
        return 26 + (c - u'0');
    switch (c) {
    case u'á': return 36;
    case u'é': return 37;
    case u'í': return 38;
    case u'ó': return 39;
    case u'ú': return 40;
    case u'ü': return 41;
    case u'ñ': return 42;
    default: return sharedFrom + int(c % (64 - sharedFrom));
    }
}

constexpr bool hasOwnBit(char16_t c) { return bitOf(c) < sharedFrom; }

inline quint64 of(QStringView text)
{
    quint64 mask = 0;
    for (const QChar c : text)
        mask |= quint64(1) << bitOf(c.unicode());
    return mask;
}
}

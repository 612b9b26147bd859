#include "catalogue/EditDistance.h"

#include <QList>

#include <algorithm>
#include <bit>
#include <vector>

int editDistance(const QString &a, const QString &b)
{
    const QList<uint> left = a.toUcs4();
    const QList<uint> right = b.toUcs4();
    // Two rows of the full matrix are enough: each cell reads only its row and the one above.
    std::vector<int> above(right.size() + 1);
    std::vector<int> row(right.size() + 1);
    for (qsizetype j = 0; j <= right.size(); ++j)
        above[j] = int(j);
    for (qsizetype i = 1; i <= left.size(); ++i) {
        row[0] = int(i);
        for (qsizetype j = 1; j <= right.size(); ++j)
            row[j] = left[i - 1] == right[j - 1] ? above[j - 1]
                                                 : std::min({row[j - 1] + 1, above[j] + 1, above[j - 1] + 2});
        std::swap(above, row);
    }
    return above[right.size()];
}

namespace {
bool hasSurrogates(const QString &text)
{
    return std::any_of(text.begin(), text.end(), [](QChar c) { return c.isSurrogate(); });
}
}

EditDistanceFrom::EditDistanceFrom(const QString &text)
    : m_text(text)
    , m_bitParallel(!text.isEmpty() && text.size() <= 64 && !hasSurrogates(text))
{
    if (!m_bitParallel)
        return;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t c = text.at(i).unicode();
        if (c < 256) {
            m_latin1[c] |= quint64(1) << i;
            continue;
        }
        auto it = std::find_if(m_masks.begin(), m_masks.end(), [c](const auto &mask) { return mask.first == c; });
        if (it == m_masks.end())
            m_masks.append({c, 0});
        it = std::find_if(m_masks.begin(), m_masks.end(), [c](const auto &mask) { return mask.first == c; });
        it->second |= quint64(1) << i;
    }
}

quint64 EditDistanceFrom::maskOf(char16_t c) const
{
    if (c < 256)
        return m_latin1[c];
    for (const auto &[character, mask] : m_masks)
        if (character == c)
            return mask;
    return 0;
}

int EditDistanceFrom::to(QStringView name) const
{
    if (!m_bitParallel)
        return editDistance(m_text, name.toString());
    // Allison-Dix / Hyyro: the zero bits of v mark the text's characters in a longest common
    // subsequence with the name read so far.
    const qsizetype m = m_text.size();
    const quint64 all = m == 64 ? ~quint64(0) : (quint64(1) << m) - 1;
    quint64 v = ~quint64(0);
    const char16_t *chars = reinterpret_cast<const char16_t *>(name.utf16());
    for (qsizetype i = 0; i < name.size(); ++i) {
        const char16_t c = chars[i];
        if ((c & 0xf800) == 0xd800) // scalars beyond the first plane: the plain matrix counts them right
            return editDistance(m_text, name.toString());
        const quint64 u = v & (c < 256 ? m_latin1[c] : maskOf(c));
        v = (v + u) | (v - u);
    }
    const int common = std::popcount(~v & all);
    return int(m + name.size()) - 2 * common;
}

void EditDistanceFrom::toFour(const QStringView (&names)[4], int (&distances)[4]) const
{
    const auto plain = [](QStringView name) {
        return std::any_of(name.begin(), name.end(), [](QChar c) { return c.isSurrogate(); });
    };
    if (!m_bitParallel || std::any_of(std::begin(names), std::end(names), plain)) {
        for (int i = 0; i < 4; ++i)
            distances[i] = to(names[i]);
        return;
    }
    const qsizetype m = m_text.size();
    const quint64 all = m == 64 ? ~quint64(0) : (quint64(1) << m) - 1;
    quint64 v[4] = {~quint64(0), ~quint64(0), ~quint64(0), ~quint64(0)};
    const qsizetype longest = std::max({names[0].size(), names[1].size(), names[2].size(), names[3].size()});
    for (qsizetype at = 0; at < longest; ++at)
        for (int i = 0; i < 4; ++i) {
            if (at >= names[i].size())
                continue;
            const char16_t c = names[i][at].unicode();
            const quint64 u = v[i] & (c < 256 ? m_latin1[c] : maskOf(c));
            v[i] = (v[i] + u) | (v[i] - u);
        }
    for (int i = 0; i < 4; ++i)
        distances[i] = int(m + names[i].size()) - 2 * std::popcount(~v[i] & all);
}

#pragma once

#include "catalogue/PlaceBits.h"

#include <QHash>
#include <QStringView>

#include <functional>
#include <vector>

// Which places hold each letter and each pair of letters of the folded text free-text search
// reads: anywhere in a word of the name, at the start of a word of the address (and there the
// first three too). A typed word of
// one or two letters is answered from it outright, however many places it finds; a longer one
// is narrowed to the places that hold every pair of it, and those few are then read whole.
class PlaceGrams
{
public:
    using Text = std::function<QStringView(size_t place)>;
    // `names` and `addresses` give each place's folded text, places 0 to count - 1.
    PlaceGrams(size_t count, const Text &names, const Text &addresses);
    PlaceGrams() = default;

    // The places `word` (folded, letters and digits only) may match: exactly those it matches
    // when it is one or two characters long.
    PlaceBits candidates(QStringView word) const;
    static bool answersOutright(QStringView word) { return word.size() <= 2; }
    // The two halves of that for a longer word: places holding every pair of it in a name, and
    // places with an address word starting with its first three.
    PlaceBits inName(QStringView word) const;
    PlaceBits atAddressWordStart(QStringView word) const;
    static bool answersAtAddressOutright(QStringView word) { return word.size() <= 3; }
    // What the posting lists hold, for the memory figures.
    size_t bytes() const
    {
        return (m_positions.size() + m_keys.size() * 3) * sizeof(quint32) + (m_keys.size() + m_denseWords.size()) * sizeof(quint64);
    }

private:
    void add(quint64 key, PlaceBits &into) const;

    size_t m_count = 0;
    std::vector<quint64> m_keys;     // ascending
    // A key held by few places lists them: m_positions[m_starts[i], m_starts[i + 1]). One held by
    // many (a common letter, "calle") is a set of bits instead, smaller and quicker to add:
    // m_dense[i] is its index among the sets in m_denseWords, or -1.
    std::vector<quint32> m_starts;
    std::vector<quint32> m_positions;
    std::vector<qint32> m_dense;
    std::vector<quint64> m_denseWords;
};

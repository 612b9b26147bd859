#pragma once

#include <QtGlobal>

#include <bit>
#include <cstddef>
#include <vector>

// A set of places as one bit per place of a listing: intersecting two is a pass over a few
// thousand words, and walking one visits its places in order.
class PlaceBits
{
public:
    explicit PlaceBits(size_t size = 0, bool full = false)
        : m_size(size)
        , m_words((size + 63) / 64, full ? ~quint64(0) : 0)
    {
        if (full && size % 64)
            m_words.back() = (quint64(1) << (size % 64)) - 1;
    }

    size_t size() const { return m_size; }
    void set(size_t i) { m_words[i / 64] |= quint64(1) << (i % 64); }
    void reset(size_t i) { m_words[i / 64] &= ~(quint64(1) << (i % 64)); }
    bool test(size_t i) const { return m_words[i / 64] >> (i % 64) & 1; }

    PlaceBits &operator&=(const PlaceBits &other)
    {
        for (size_t w = 0; w < m_words.size(); ++w)
            m_words[w] &= w < other.m_words.size() ? other.m_words[w] : 0;
        return *this;
    }
    PlaceBits &operator|=(const PlaceBits &other)
    {
        for (size_t w = 0; w < m_words.size() && w < other.m_words.size(); ++w)
            m_words[w] |= other.m_words[w];
        return *this;
    }

    // Adds the places of `words`, a set of the same size laid out as this one's.
    void unite(const quint64 *words)
    {
        for (size_t w = 0; w < m_words.size(); ++w)
            m_words[w] |= words[w];
    }

    size_t count() const
    {
        size_t n = 0;
        for (const quint64 word : m_words)
            n += size_t(std::popcount(word));
        return n;
    }

    // Calls `visit(i)` for every place in the set, in ascending order.
    template<typename Visit>
    void forEach(Visit &&visit) const
    {
        for (size_t w = 0; w < m_words.size(); ++w)
            for (quint64 word = m_words[w]; word; word &= word - 1)
                visit(w * 64 + size_t(std::countr_zero(word)));
    }

private:
    size_t m_size = 0;
    std::vector<quint64> m_words;
};

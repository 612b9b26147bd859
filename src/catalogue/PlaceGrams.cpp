#include "catalogue/PlaceGrams.h"

#include "catalogue/SearchTerms.h"

#include <algorithm>

namespace {

enum Where : quint64 { InName = 0, AtAddressWordStart = 1 };

quint64 gram(Where where, char16_t first, char16_t second = 0, char16_t third = 0)
{
    return (quint64(where) << 48) | (quint64(first) << 32) | (quint64(second) << 16) | third;
}

// Every gram of one place, each once, into `grams` (cleared first).
void gramsOf(QStringView name, QStringView address, std::vector<quint64> &grams)
{
    grams.clear();
    // Pairs never span a space or a sign: a typed word is letters and digits only.
    for (qsizetype i = 0; i < name.size(); ++i) {
        if (!isTokenCharacter(name[i]))
            continue;
        grams.push_back(gram(InName, name[i].unicode()));
        if (i + 1 < name.size() && isTokenCharacter(name[i + 1]))
            grams.push_back(gram(InName, name[i].unicode(), name[i + 1].unicode()));
    }
    for (qsizetype i = 0; i < address.size(); ++i) {
        if (!isTokenCharacter(address[i]) || (i > 0 && isTokenCharacter(address[i - 1])))
            continue;
        grams.push_back(gram(AtAddressWordStart, address[i].unicode()));
        if (i + 1 < address.size() && isTokenCharacter(address[i + 1])) {
            grams.push_back(gram(AtAddressWordStart, address[i].unicode(), address[i + 1].unicode()));
            // Addresses share their first words ("calle", "avenida"): three letters tell them apart.
            if (i + 2 < address.size() && isTokenCharacter(address[i + 2]))
                grams.push_back(gram(AtAddressWordStart, address[i].unicode(), address[i + 1].unicode(), address[i + 2].unicode()));
        }
    }
    std::sort(grams.begin(), grams.end());
    grams.erase(std::unique(grams.begin(), grams.end()), grams.end());
}

}

PlaceGrams::PlaceGrams(size_t count, const Text &names, const Text &addresses)
    : m_count(count)
{
    // Two passes over the text rather than one list of (gram, place) pairs to sort: the pairs
    // of a country would take tens of megabytes for a moment.
    QHash<quint64, quint32> counts;
    std::vector<quint64> grams;
    for (size_t place = 0; place < count; ++place) {
        gramsOf(names(place), addresses(place), grams);
        for (const quint64 g : grams)
            ++counts[g];
    }
    m_keys.reserve(size_t(counts.size()));
    for (auto it = counts.cbegin(); it != counts.cend(); ++it)
        m_keys.push_back(it.key());
    std::sort(m_keys.begin(), m_keys.end());
    // A list costs 32 bits a place, a set one bit for every place of the listing.
    const size_t words = (count + 63) / 64;
    m_starts.reserve(m_keys.size() + 1);
    m_dense.reserve(m_keys.size());
    QHash<quint64, quint32> slotOf;
    quint32 total = 0;
    qint32 sets = 0;
    for (size_t i = 0; i < m_keys.size(); ++i) {
        m_starts.push_back(total);
        slotOf.insert(m_keys[i], quint32(i));
        const quint32 held = counts.value(m_keys[i]);
        const bool dense = size_t(held) * 32 > count;
        m_dense.push_back(dense ? sets++ : -1);
        if (!dense)
            total += held;
    }
    m_starts.push_back(total);
    m_positions.resize(total);
    m_denseWords.assign(size_t(sets) * words, 0);
    std::vector<quint32> next(m_starts.begin(), m_starts.end() - 1);
    for (size_t place = 0; place < count; ++place) {
        gramsOf(names(place), addresses(place), grams);
        for (const quint64 g : grams) {
            const quint32 slot = slotOf.value(g);
            if (const qint32 set = m_dense[slot]; set >= 0)
                m_denseWords[size_t(set) * words + place / 64] |= quint64(1) << (place % 64);
            else
                m_positions[next[slot]++] = quint32(place);
        }
    }
}

void PlaceGrams::add(quint64 key, PlaceBits &into) const
{
    const auto found = std::lower_bound(m_keys.begin(), m_keys.end(), key);
    if (found == m_keys.end() || *found != key)
        return;
    const size_t slot = size_t(found - m_keys.begin());
    if (const qint32 set = m_dense[slot]; set >= 0) {
        into.unite(m_denseWords.data() + size_t(set) * ((m_count + 63) / 64));
        return;
    }
    for (quint32 i = m_starts[slot]; i < m_starts[slot + 1]; ++i)
        into.set(m_positions[i]);
}

PlaceBits PlaceGrams::candidates(QStringView word) const
{
    PlaceBits found(m_count);
    if (word.size() == 1) {
        add(gram(InName, word[0].unicode()), found);
        add(gram(AtAddressWordStart, word[0].unicode()), found);
        return found;
    }
    if (word.size() > 1) {
        found = inName(word);
        found |= atAddressWordStart(word);
    }
    return found;
}

PlaceBits PlaceGrams::inName(QStringView word) const
{
    PlaceBits found(m_count);
    if (word.size() < 2)
        return found;
    add(gram(InName, word[0].unicode(), word[1].unicode()), found);
    for (qsizetype i = 1; i + 1 < word.size(); ++i) {
        PlaceBits pair(m_count);
        add(gram(InName, word[i].unicode(), word[i + 1].unicode()), pair);
        found &= pair;
    }
    return found;
}

PlaceBits PlaceGrams::atAddressWordStart(QStringView word) const
{
    PlaceBits found(m_count);
    if (word.size() >= 2)
        add(gram(AtAddressWordStart, word[0].unicode(), word[1].unicode(), word.size() > 2 ? word[2].unicode() : 0), found);
    return found;
}

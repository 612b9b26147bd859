#include "catalogue/PlaceListing.h"

#include "catalogue/EditDistance.h"
#include "catalogue/SearchTerms.h"
#include "platform/Database.h"


#include <algorithm>
#include <array>
#include <numeric>

namespace {

// The first character of a sort name, upper-cased: the letter of its section.
QString sectionLetter(const QString &searchName)
{
    const int length = searchName.size() > 1 && searchName.at(0).isHighSurrogate() ? 2 : 1;
    return searchName.left(length).toUpper();
}

bool isTokenCharacter(QChar c)
{
    return c.isLetterOrNumber();
}

// The words of folded text, as the tokenizer splits it: runs of letters and digits.
QStringList tokens(const QString &folded)
{
    QStringList words;
    qsizetype start = -1;
    for (qsizetype i = 0; i <= folded.size(); ++i) {
        const bool inWord = i < folded.size() && isTokenCharacter(folded.at(i));
        if (inWord && start < 0)
            start = i;
        else if (!inWord && start >= 0) {
            words.append(folded.mid(start, i - start));
            start = -1;
        }
    }
    return words;
}

bool startsAWord(QStringView folded, const QString &word)
{
    for (qsizetype at = folded.indexOf(word); at >= 0; at = folded.indexOf(word, at + 1))
        if (at == 0 || !isTokenCharacter(folded.at(at - 1)))
            return true;
    return false;
}

}

QString foldForSearch(const QString &text)
{
    const bool ascii = std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 128; });
    if (ascii)
        return text.toLower();
    QString folded;
    const QString decomposed = text.normalized(QString::NormalizationForm_D);
    folded.reserve(decomposed.size());
    for (const QChar c : decomposed)
        if (c.category() != QChar::Mark_NonSpacing)
            folded.append(c);
    return folded.toCaseFolded();
}

std::shared_ptr<const PlaceListing> PlaceListing::read(Database &db, QString &error)
{
    auto listing = std::make_shared<PlaceListing>();
    std::vector<QString> sortNames;
    const bool read = db.forEachRow(QStringLiteral("SELECT id,search_name,name,address FROM restaurants"), {},
                                    [&](const ResultSet &row) {
                                        Place place;
                                        place.id = row.intForColumn(0);
                                        QString name = row.stringForColumn(2);
                                        place.named = !name.isNull();
                                        listing->m_places.push_back(place);
                                        listing->m_readNames.push_back(std::move(name));
                                        sortNames.push_back(row.stringForColumn(1));
                                        listing->m_addresses.push_back(row.stringForColumn(3));
                                        return true;
                                    });
    if (!read) {
        error = db.lastErrorMessage();
        return nullptr;
    }
    // Ids are a catalogue's row ids: nearly always dense enough to look up in a vector.
    int largest = 0;
    for (const Place &place : listing->m_places)
        largest = std::max(largest, place.id);
    const bool dense = largest < 8 * int(listing->m_places.size()) + 1024
        && std::all_of(listing->m_places.begin(), listing->m_places.end(), [](const Place &place) { return place.id >= 0; });
    if (dense)
        listing->m_denseIds.assign(size_t(largest) + 1, -1);
    for (int i = 0; i < int(listing->m_places.size()); ++i) {
        if (dense)
            listing->m_denseIds[size_t(listing->m_places[size_t(i)].id)] = i;
        else
            listing->m_positions.insert(listing->m_places[size_t(i)].id, i);
    }

    // Ranks by sort name (ties by id, so the order is the same on every run); a place without
    // a sort name has none and drops out of every list. Names share long beginnings
    // ("restaurante ..."), so the first sixteen characters are packed into integers that decide
    // most comparisons, and only names equal that far are compared from there on.
    constexpr qsizetype packedLength = 16;
    struct Keyed {
        std::array<quint64, packedLength / 4> prefix;
        int index;
    };
    std::vector<Keyed> order;
    order.reserve(sortNames.size());
    for (int i = 0; i < int(sortNames.size()); ++i) {
        const QString &name = sortNames[size_t(i)];
        if (name.isEmpty())
            continue;
        Keyed keyed{{}, i};
        for (qsizetype c = 0; c < packedLength; ++c)
            keyed.prefix[size_t(c / 4)] = (keyed.prefix[size_t(c / 4)] << 16) | (c < name.size() ? name.at(c).unicode() : 0);
        order.push_back(keyed);
    }
    std::sort(order.begin(), order.end(), [&](const Keyed &a, const Keyed &b) {
        if (a.prefix != b.prefix)
            return a.prefix < b.prefix;
        // Equal packed beginnings: the rest decides (a name shorter than the packed length is
        // padded with zeros there, so it is compared whole).
        const QString &first = sortNames[size_t(a.index)];
        const QString &second = sortNames[size_t(b.index)];
        const qsizetype from = std::min({first.size(), second.size(), packedLength});
        const int c = QStringView(first).sliced(from).compare(QStringView(second).sliced(from));
        return c != 0 ? c < 0 : listing->m_places[size_t(a.index)].id < listing->m_places[size_t(b.index)].id;
    });

    // Section letters: few distinct ones, so each first character is upper-cased once and each
    // place keeps the slotIndex of its letter until the letters are put in order.
    QStringList letterSlots;
    QHash<QString, int> slotOfLetter;
    QHash<char16_t, int> slotOfFirst;
    const auto slotOf = [&](const QString &letter) {
        auto known = slotOfLetter.constFind(letter);
        if (known == slotOfLetter.constEnd()) {
            known = slotOfLetter.insert(letter, int(letterSlots.size()));
            letterSlots.append(letter);
        }
        return *known;
    };
    std::vector<int> slotOfRank;
    slotOfRank.reserve(order.size());
    for (const Keyed &keyed : order) {
        const QString &name = sortNames[size_t(keyed.index)];
        const char16_t first = name.at(0).unicode();
        if (name.at(0).isHighSurrogate()) {
            slotOfRank.push_back(slotOf(sectionLetter(name)));
            continue;
        }
        auto known = slotOfFirst.constFind(first);
        if (known == slotOfFirst.constEnd())
            known = slotOfFirst.insert(first, slotOf(sectionLetter(name)));
        slotOfRank.push_back(*known);
    }
    QStringList distinct = letterSlots;
    std::sort(distinct.begin(), distinct.end());
    std::vector<int> letterOfSlot(size_t(letterSlots.size()));
    for (int slotIndex = 0; slotIndex < int(letterSlots.size()); ++slotIndex)
        letterOfSlot[size_t(slotIndex)] = int(std::lower_bound(distinct.begin(), distinct.end(), letterSlots.at(slotIndex)) - distinct.begin());
    listing->m_letters = distinct;
    listing->m_byRank.reserve(order.size());
    for (int rank = 0; rank < int(order.size()); ++rank) {
        Place &place = listing->m_places[size_t(order[size_t(rank)].index)];
        place.rank = rank;
        place.letter = letterOfSlot[size_t(slotOfRank[size_t(rank)])];
        listing->m_byRank.push_back({place.id, place.letter});
    }
    return listing;
}

int PlaceListing::positionOf(int id) const
{
    if (!m_denseIds.empty())
        return id >= 0 && size_t(id) < m_denseIds.size() ? m_denseIds[size_t(id)] : -1;
    return m_positions.value(id, -1);
}

QList<SortedEntry> PlaceListing::sorted(const QSet<int> &ids, const QString &text) const
{
    if (!text.isEmpty())
        fold();
    // Each entry is one 64-bit key, so the order is a sort of integers: letter (16 bits),
    // distance (16 bits) and rank (32 bits), most significant first.
    // Places are visited in the order they were read, not the set's hash order: the names then
    // stream through the cache instead of each costing a miss.
    std::vector<int> positions;
    positions.reserve(size_t(ids.size()));
    for (int id : ids)
        if (const int position = positionOf(id); position >= 0)
            positions.push_back(position);
    std::sort(positions.begin(), positions.end());

    std::vector<quint64> keys;
    keys.reserve(positions.size());
    const std::optional<EditDistanceFrom> distanceFrom = text.isEmpty() ? std::nullopt : std::optional(EditDistanceFrom(text));
    const QString lowered = text.toLower();
    constexpr quint64 farthest = (quint64(1) << 16) - 1;
    for (const int position : positions) {
        const Place &place = m_places[size_t(position)];
        if (place.rank < 0)
            continue;
        if (!distanceFrom) {
            keys.push_back(quint64(place.rank));
            continue;
        }
        // Names that contain the text lead; no name at all comes last in its section.
        quint64 distance = farthest;
        if (place.named) {
            const qsizetype from = m_nameOffsets[size_t(position)];
            const qsizetype length = m_nameOffsets[size_t(position) + 1] - from;
            distance = QStringView(m_loweredNames).mid(from, length).contains(lowered)
                ? 0
                : std::min<quint64>(farthest, quint64(distanceFrom->to(QStringView(m_names).mid(from, length))));
        }
        keys.push_back((quint64(place.letter) << 48) | (distance << 32) | quint64(place.rank));
    }
    std::sort(keys.begin(), keys.end());
    QList<SortedEntry> entries;
    entries.reserve(qsizetype(keys.size()));
    for (const quint64 key : keys) {
        const auto &[id, letter] = m_byRank[size_t(key & 0xffffffffu)];
        entries.append({id, m_letters.at(letter)});
    }
    return entries;
}

void PlaceListing::fold() const
{
    std::call_once(m_folded, [this] {
        m_foldedNameOffsets.reserve(m_places.size() + 1);
        m_foldedAddressOffsets.reserve(m_places.size() + 1);
        m_nameOffsets.reserve(m_places.size() + 1);
        for (size_t i = 0; i < m_places.size(); ++i) {
            m_nameOffsets.push_back(m_names.size());
            const QString &name = m_readNames[i];
            m_names += name;
            // Lower case may change a name's length (rarely); both copies keep the same offsets.
            QString lowered = name.toLower();
            lowered.resize(name.size(), QLatin1Char(' '));
            m_loweredNames += lowered;
            // The same limits as the index's, so both find the same places.
            m_foldedNameOffsets.push_back(m_foldedNames.size());
            m_foldedNames += foldForSearch(indexedNameWords(name).join(QLatin1Char(' ')));
            m_foldedAddressOffsets.push_back(m_foldedAddresses.size());
            m_foldedAddresses += foldForSearch(m_addresses[i].left(maxIndexedAddressLength));
        }
        m_nameOffsets.push_back(m_names.size());
        m_foldedNameOffsets.push_back(m_foldedNames.size());
        m_foldedAddressOffsets.push_back(m_foldedAddresses.size());
        // Only the strings made here are read from now on.
        std::vector<QString>().swap(m_readNames);
        std::vector<QString>().swap(m_addresses);
    });
}

bool PlaceListing::matches(size_t position, const QStringList &words) const
{
    return std::all_of(words.begin(), words.end(), [&](const QString &word) {
        const auto span = [position](const QString &text, const std::vector<qsizetype> &offsets) {
            return QStringView(text).mid(offsets[position], offsets[position + 1] - offsets[position]);
        };
        return span(m_foldedNames, m_foldedNameOffsets).contains(word)
            || startsAWord(span(m_foldedAddresses, m_foldedAddressOffsets), word);
    });
}

QSet<int> PlaceListing::matching(const QString &text, const QList<int> *within) const
{
    QStringList words;
    for (const QString &piece : wordsOf(text)) {
        const QStringList pieceWords = tokens(foldForSearch(piece));
        if (pieceWords.isEmpty())
            return {}; // punctuation alone is no term the index could look up
        words += pieceWords;
    }
    QSet<int> found;
    if (words.isEmpty())
        return found;
    fold();
    if (within) {
        // In read order, so the folded text streams through the cache.
        std::vector<int> positions;
        positions.reserve(size_t(within->size()));
        for (int id : *within)
            if (const int position = positionOf(id); position >= 0)
                positions.push_back(position);
        std::sort(positions.begin(), positions.end());
        found.reserve(qsizetype(positions.size()));
        for (const int position : positions)
            if (matches(size_t(position), words))
                found.insert(m_places[size_t(position)].id);
        return found;
    }
    for (size_t i = 0; i < m_places.size(); ++i)
        if (matches(i, words))
            found.insert(m_places[i].id);
    return found;
}

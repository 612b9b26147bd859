#include "catalogue/PlaceListing.h"

#include "catalogue/EditDistance.h"
#include "catalogue/LetterMask.h"
#include "catalogue/SearchTerms.h"
#include "platform/Database.h"

#include <QSet>
#include <QtEndian>

#include <algorithm>
#include <array>
#include <mutex>
#include <numeric>
#include <optional>

namespace {

// The first character of a sort name, upper-cased: the letter of its section.
QString sectionLetter(QStringView searchName)
{
    const int length = searchName.size() > 1 && searchName.at(0).isHighSurrogate() ? 2 : 1;
    return searchName.left(length).toString().toUpper();
}

// Entry i of texts kept end to end: [offsets[i], offsets[i + 1]).
QStringView spanOf(const QString &text, const std::vector<qsizetype> &offsets, size_t i)
{
    return QStringView(text).mid(offsets[i], offsets[i + 1] - offsets[i]);
}

// Whether `text` holds `part`, code unit for code unit. Names are a few dozen characters: a
// plain pass beats a general search's set-up, and a keystroke asks tens of thousands of names.
bool holds(QStringView text, QStringView part)
{
    if (part.isEmpty())
        return true;
    if (part.size() > text.size())
        return false;
    const char16_t *at = text.utf16();
    const char16_t *const last = at + (text.size() - part.size());
    const char16_t *const wanted = part.utf16();
    const char16_t first = wanted[0];
    for (; at <= last; ++at)
        if (*at == first && std::equal(wanted + 1, wanted + part.size(), at + 1))
            return true;
    return false;
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

// The folded words of typed text, as the index reads its query; none at all when a piece of it
// is punctuation alone, which is no term the index could look up.
std::optional<QStringList> searchWords(const QString &text)
{
    QStringList words;
    for (const QString &piece : wordsOf(text)) {
        const QStringList pieceWords = tokens(foldForSearch(piece));
        if (pieceWords.isEmpty())
            return std::nullopt;
        words += pieceWords;
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
    // Room for every row from the start (the largest row id is a look at the table's last page).
    qint64 expected = 0;
    db.forEachRow(QStringLiteral("SELECT max(rowid) FROM restaurants"), {}, [&](const ResultSet &row) {
        expected = std::clamp<qint64>(row.longForColumn(0), 0, 1 << 21) + 1;
        return false;
    });
    listing->m_places.reserve(size_t(expected));
    listing->m_nameOffsets.reserve(size_t(expected) + 1);
    listing->m_readAddressOffsets.reserve(size_t(expected) + 1);
    // Texts end to end rather than a string a place: a string's own overhead would double the
    // text's memory, and making one a column would cost the read as much as the file does.
    QString sortText; // only for ranking
    std::vector<qsizetype> sortOffsets;
    sortOffsets.reserve(size_t(expected) + 1);
    const bool read = db.forEachRow(QStringLiteral("SELECT id,search_name,name,address FROM restaurants"), {},
                                    [&](const ResultSet &row) {
                                        Place place;
                                        place.id = row.intForColumn(0);
                                        listing->m_nameOffsets.push_back(listing->m_names.size());
                                        place.named = row.appendStringForColumn(2, listing->m_names);
                                        listing->m_places.push_back(place);
                                        sortOffsets.push_back(sortText.size());
                                        row.appendStringForColumn(1, sortText);
                                        listing->m_readAddressOffsets.push_back(listing->m_readAddresses.size());
                                        row.appendStringForColumn(3, listing->m_readAddresses);
                                        return true;
                                    });
    if (!read) {
        error = db.lastErrorMessage();
        return nullptr;
    }
    listing->m_nameOffsets.push_back(listing->m_names.size());
    listing->m_readAddressOffsets.push_back(listing->m_readAddresses.size());
    sortOffsets.push_back(sortText.size());
    const auto sortName = [&](int i) { return spanOf(sortText, sortOffsets, size_t(i)); };
    listing->indexPositions();

    // Ranks by sort name (ties by id, so the order is the same on every run); a place without
    // a sort name has none and drops out of every list. Names share long beginnings
    // ("restaurante ..."), so their first 24 characters are packed a byte each into integers
    // that decide nearly every comparison. A character past Latin-1 (or ÿ) packs as 255 and
    // ends the packing, so packed order never contradicts the names' order; names that pack
    // equal are compared whole.
    //
    // Section letters: few distinct ones, so each first character is upper-cased once. Each
    // place's letter slot is found here, in the order the names were read (so the names stream
    // through the cache), and put in order once the letters are known.
    constexpr qsizetype packedLength = 24;
    struct Keyed {
        std::array<quint64, packedLength / 8> prefix;
        int index;
        int slot;
    };
    QStringList letterSlots;
    QHash<QString, int> slotOfLetter;
    std::vector<int> slotOfFirst(size_t(1) << 16, -1);
    const auto slotOf = [&](const QString &letter) {
        auto known = slotOfLetter.constFind(letter);
        if (known == slotOfLetter.constEnd()) {
            known = slotOfLetter.insert(letter, int(letterSlots.size()));
            letterSlots.append(letter);
        }
        return *known;
    };
    std::vector<Keyed> order;
    order.reserve(listing->m_places.size());
    for (int i = 0; i < int(listing->m_places.size()); ++i) {
        const QStringView name = sortName(i);
        if (name.isEmpty())
            continue;
        Keyed keyed{{}, i, -1};
        std::array<unsigned char, packedLength> bytes{};
        const char16_t *chars = name.utf16();
        for (qsizetype c = 0, end = std::min(name.size(), packedLength); c < end; ++c) {
            if (chars[c] >= 255) {
                bytes[size_t(c)] = 255;
                break;
            }
            bytes[size_t(c)] = static_cast<unsigned char>(chars[c]);
        }
        for (size_t k = 0; k < keyed.prefix.size(); ++k)
            keyed.prefix[k] = qFromBigEndian<quint64>(bytes.data() + 8 * k);
        if (QChar::isHighSurrogate(chars[0])) {
            keyed.slot = slotOf(sectionLetter(name));
        } else {
            int &known = slotOfFirst[chars[0]];
            if (known < 0)
                known = slotOf(sectionLetter(name));
            keyed.slot = known;
        }
        order.push_back(keyed);
    }
    std::sort(order.begin(), order.end(), [&](const Keyed &a, const Keyed &b) {
        for (size_t k = 0; k < a.prefix.size(); ++k)
            if (a.prefix[k] != b.prefix[k])
                return a.prefix[k] < b.prefix[k];
        const int c = sortName(a.index).compare(sortName(b.index));
        return c != 0 ? c < 0 : listing->m_places[size_t(a.index)].id < listing->m_places[size_t(b.index)].id;
    });

    QStringList distinct = letterSlots;
    std::sort(distinct.begin(), distinct.end());
    std::vector<int> letterOfSlot(size_t(letterSlots.size()));
    for (int slotIndex = 0; slotIndex < int(letterSlots.size()); ++slotIndex)
        letterOfSlot[size_t(slotIndex)] = int(std::lower_bound(distinct.begin(), distinct.end(), letterSlots.at(slotIndex)) - distinct.begin());
    listing->setLetters(distinct);
    listing->m_byRank.reserve(order.size());
    for (int rank = 0; rank < int(order.size()); ++rank) {
        Place &place = listing->m_places[size_t(order[size_t(rank)].index)];
        place.rank = rank;
        place.letter = letterOfSlot[size_t(order[size_t(rank)].slot)];
        listing->m_byRank.push_back({place.id, place.letter});
    }
    return listing;
}

void PlaceListing::setLetters(const QStringList &letters)
{
    // Every entry of a list carries its letter; a string with a count of its own would cost
    // each entry an atomic step when made and another when freed, tens of thousands a keystroke.
    // The letters are kept once for the life of the process (a few dozen of them, whatever the
    // catalogues), and the listing's are views of those, which copy without counting and can
    // outlive the listing in any list made from it.
    static std::mutex mutex;
    static auto *const kept = new QSet<QString>; // never freed: lists made from it outlive statics
    std::lock_guard lock(mutex);
    m_letters.clear();
    m_letters.reserve(letters.size());
    for (const QString &letter : letters) {
        const QString &permanent = *kept->insert(letter);
        m_letters.append(QString::fromRawData(permanent.constData(), permanent.size()));
    }
}

void PlaceListing::indexPositions()
{
    // Ids are a catalogue's row ids: nearly always dense enough to look up in a vector.
    int largest = 0;
    for (const Place &place : m_places)
        largest = std::max(largest, place.id);
    const bool dense = largest < 8 * int(m_places.size()) + 1024
        && std::all_of(m_places.begin(), m_places.end(), [](const Place &place) { return place.id >= 0; });
    if (dense)
        m_denseIds.assign(size_t(largest) + 1, -1);
    for (int i = 0; i < int(m_places.size()); ++i) {
        if (dense)
            m_denseIds[size_t(m_places[size_t(i)].id)] = i;
        else
            m_positions.insert(m_places[size_t(i)].id, i);
    }
}

int PlaceListing::positionOf(int id) const
{
    if (!m_denseIds.empty())
        return id >= 0 && size_t(id) < m_denseIds.size() ? m_denseIds[size_t(id)] : -1;
    return m_positions.value(id, -1);
}

QList<SortedEntry> PlaceListing::sorted(const QSet<int> &ids, const QString &text) const
{
    return entriesOf(bitsOf(ids), text);
}

PlaceBits PlaceListing::bitsOf(const QSet<int> &ids) const
{
    PlaceBits bits(m_places.size());
    for (int id : ids)
        if (const int position = positionOf(id); position >= 0)
            bits.set(size_t(position));
    return bits;
}

QList<SortedEntry> PlaceListing::listed(PlaceBits places, const QString &text) const
{
    if (!text.isEmpty()) {
        const std::optional<QStringList> words = searchWords(text);
        if (!words || words->isEmpty())
            return {};
        keepMatching(places, *words);
    }
    return entriesOf(places, text);
}

QList<SortedEntry> PlaceListing::entriesOf(const PlaceBits &places, const QString &text) const
{
    // Places are visited in the order they were read, so the names stream through the cache,
    // and set by rank, so that walking the ranks gives them in order.
    PlaceBits ranks(m_byRank.size());
    constexpr quint64 farthest = (quint64(1) << 16) - 1;
    std::vector<quint16> distances;
    if (text.isEmpty()) {
        places.forEach([&](size_t position) {
            if (const int rank = m_places[position].rank; rank >= 0)
                ranks.set(size_t(rank));
        });
    } else {
        fold();
        distances.assign(m_byRank.size(), 0);
        const EditDistanceFrom distanceFrom(text);
        const QString lowered = text.toLower();
        // A single letter absent from the lower-cased name is absent from the name itself.
        const bool oneLetter = text.size() == 1 && lowered.size() == 1 && text.at(0).toLower() == lowered.at(0)
            && !text.at(0).isSurrogate();
        const quint64 textLetters = LetterMask::of(lowered);
        const bool maskAnswers = oneLetter && LetterMask::hasOwnBit(lowered.at(0).unicode());
        const auto nameContains = [&](size_t position) {
            const quint64 letters = m_nameLetters[position];
            if ((letters & textLetters) != textLetters)
                return false;
            if (maskAnswers)
                return true;
            const qsizetype from = m_nameOffsets[position];
            return holds(QStringView(m_loweredNames).mid(from, m_nameOffsets[position + 1] - from), lowered);
        };
        // Names that contain the text lead; no name at all comes last in its section. The
        // others are measured four at a time.
        std::vector<size_t> measured;
        places.forEach([&](size_t position) {
            const Place &place = m_places[position];
            if (place.rank < 0)
                return;
            ranks.set(size_t(place.rank));
            quint64 distance = farthest;
            if (place.named) {
                if (nameContains(position))
                    distance = 0;
                else if (oneLetter) // nothing in common: every letter of both is an edit
                    distance = std::min<quint64>(farthest, quint64(1 + m_nameOffsets[position + 1] - m_nameOffsets[position]));
                else
                    measured.push_back(position);
            }
            distances[size_t(place.rank)] = quint16(distance);
        });
        const auto store = [&](size_t position, int distance) {
            distances[size_t(m_places[position].rank)] = quint16(std::min<quint64>(farthest, quint64(distance)));
        };
        size_t next = 0;
        for (; next + 4 <= measured.size(); next += 4) {
            const QStringView names[4] = {nameAt(measured[next]), nameAt(measured[next + 1]), nameAt(measured[next + 2]),
                                          nameAt(measured[next + 3])};
            int found[4];
            distanceFrom.toFour(names, found);
            for (int i = 0; i < 4; ++i)
                store(measured[next + size_t(i)], found[i]);
        }
        for (; next < measured.size(); ++next)
            store(measured[next], distanceFrom.to(nameAt(measured[next])));
    }
    // The ranks come in order; with text, two stable counting passes, by distance and then by
    // letter, give the order of (letter, distance, rank) in linear time: a list of every place
    // of a province is tens of thousands of entries.
    std::vector<quint32> order;
    order.reserve(places.size());
    ranks.forEach([&](size_t rank) { order.push_back(quint32(rank)); });
    const auto stableBy = [&](auto &&keyOf, size_t range) {
        std::vector<quint32> starts(range + 1, 0);
        for (const quint32 rank : order)
            ++starts[keyOf(rank) + 1];
        for (size_t k = 1; k <= range; ++k)
            starts[k] += starts[k - 1];
        std::vector<quint32> sorted(order.size());
        for (const quint32 rank : order)
            sorted[starts[keyOf(rank)]++] = rank;
        order.swap(sorted);
    };
    if (!distances.empty()) {
        quint16 farthestFound = 0;
        for (const quint32 rank : order)
            farthestFound = std::max(farthestFound, distances[rank]);
        if (farthestFound > 0)
            stableBy([&](quint32 rank) { return size_t(distances[rank]); }, size_t(farthestFound) + 1);
    }
    // Without text the order is the sort names' alone; with text the sections come first.
    const auto letterOf = [&](quint32 rank) { return size_t(m_byRank[rank].second); };
    if (!text.isEmpty() && !std::is_sorted(order.begin(), order.end(), [&](quint32 a, quint32 b) { return letterOf(a) < letterOf(b); }))
        stableBy(letterOf, size_t(m_letters.size()));
    QList<SortedEntry> entries;
    entries.reserve(qsizetype(order.size()));
    for (const quint32 rank : order) {
        const auto &[id, letter] = m_byRank[rank];
        entries.append({id, m_letters.at(letter)});
    }
    return entries;
}

void PlaceListing::fold() const
{
    std::call_once(m_folded, [this] {
        m_foldedNameOffsets.reserve(m_places.size() + 1);
        m_foldedAddressOffsets.reserve(m_places.size() + 1);
        m_loweredNames.reserve(m_names.size());
        m_nameLetters.reserve(m_places.size());
        for (size_t i = 0; i < m_places.size(); ++i) {
            const QString name = nameAt(i).toString();
            // Lower case may change a name's length (rarely); both copies keep the same offsets.
            QString lowered = name.toLower();
            lowered.resize(name.size(), QLatin1Char(' '));
            m_loweredNames += lowered;
            m_nameLetters.push_back(LetterMask::of(lowered));
            // The same limits as the index's, so both find the same places.
            m_foldedNameOffsets.push_back(m_foldedNames.size());
            m_foldedNames += foldForSearch(indexedNameWords(name).join(QLatin1Char(' ')));
            const QStringView address = spanOf(m_readAddresses, m_readAddressOffsets, i);
            m_foldedAddressOffsets.push_back(m_foldedAddresses.size());
            m_foldedAddresses += foldForSearch(address.left(maxIndexedAddressLength).toString());
        }
        m_foldedNameOffsets.push_back(m_foldedNames.size());
        m_foldedAddressOffsets.push_back(m_foldedAddresses.size());
        // Only the strings made here are read from now on.
        {
            std::lock_guard lock(m_readAddressesMutex);
            QString().swap(m_readAddresses);
            std::vector<qsizetype>().swap(m_readAddressOffsets);
        }
        m_grams = PlaceGrams(
            m_places.size(), [this](size_t i) { return foldedName(i); }, [this](size_t i) { return foldedAddress(i); });
    });
}

QStringView PlaceListing::nameAt(size_t position) const { return spanOf(m_names, m_nameOffsets, position); }

QStringView PlaceListing::foldedName(size_t position) const { return spanOf(m_foldedNames, m_foldedNameOffsets, position); }

QStringView PlaceListing::foldedAddress(size_t position) const
{
    return spanOf(m_foldedAddresses, m_foldedAddressOffsets, position);
}

void PlaceListing::keepMatching(PlaceBits &places, const QStringList &words) const
{
    fold();
    for (const QString &word : words) {
        if (PlaceGrams::answersOutright(word)) {
            places &= m_grams.candidates(word);
            continue;
        }
        // Each side read only where its letters are: a word every address starts with ("calle")
        // needs no name read, a rare one no address.
        PlaceBits inName = m_grams.inName(word);
        inName &= places;
        PlaceBits found(places.size());
        inName.forEach([&](size_t position) {
            if (holds(foldedName(position), word))
                found.set(position);
        });
        PlaceBits inAddress = m_grams.atAddressWordStart(word);
        inAddress &= places;
        if (PlaceGrams::answersAtAddressOutright(word))
            found |= inAddress;
        else
            inAddress.forEach([&](size_t position) {
                if (!found.test(position) && startsAWord(foldedAddress(position), word))
                    found.set(position);
            });
        places = std::move(found);
    }
}

QSet<int> PlaceListing::matching(const QString &text, const QList<int> *within) const
{
    QSet<int> found;
    const std::optional<QStringList> words = searchWords(text);
    if (!words || words->isEmpty())
        return found;
    PlaceBits places(m_places.size(), !within);
    if (within)
        for (int id : *within)
            if (const int position = positionOf(id); position >= 0)
                places.set(size_t(position));
    keepMatching(places, *words);
    found.reserve(qsizetype(places.count()));
    places.forEach([&](size_t position) { found.insert(m_places[position].id); });
    return found;
}

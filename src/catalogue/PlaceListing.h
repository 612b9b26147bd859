#pragma once

#include "catalogue/PlaceBits.h"
#include "catalogue/PlaceGrams.h"
#include "catalogue/Records.h"

#include <QHash>
#include <QSet>
#include <QString>

#include <memory>
#include <mutex>
#include <vector>

class Database;

// Case and accents aside, as the search index's tokenizer sees text: decomposed, marks
// dropped, case folded.
QString foldForSearch(const QString &text);

// Every place's sort name, name and address, read once per catalogue. Listing a set of places
// is then a pass in the order of an integer rank instead of a sort of strings, and free text
// can be matched without the search index while that is being built. Immutable once read, so
// any thread may use it.
class PlaceListing
{
public:
    // Reads every place of the catalogue. Null, with `error` set, when the read fails.
    static std::shared_ptr<const PlaceListing> read(Database &db, QString &error);
    // The listing as read() made it, kept in a file for the next start on the same catalogue.
    // `stamp` names that catalogue: a file made for another one, of another format or damaged
    // in any way loads as null. Saving fails once fold() has let the read addresses go; it is
    // safe beside other threads' use.
    static std::shared_ptr<const PlaceListing> load(const QString &file, const QByteArray &stamp);
    bool save(const QString &file, const QByteArray &stamp) const;

    // The places of `ids` that have a sort name, in list order with their section letters:
    // by sort name when `text` is empty; else by letter, then closeness of the name to `text`
    // (names containing it first), then sort name.
    QList<SortedEntry> sorted(const QSet<int> &ids, const QString &text) const;
    // What the search index would find for `text`: every word a prefix of a word of the
    // address, or found inside a word of the name. Only among `within` when given: a keystroke
    // needs the matches of one province, not of the whole country.
    QSet<int> matching(const QString &text, const QList<int> *within = nullptr) const;
    // One keystroke of the search screen: the places of `places` that match `text` (all of them
    // when it is empty), in list order, as sorted() would give them.
    QList<SortedEntry> listed(PlaceBits places, const QString &text) const;
    // The places of `ids` this listing has, as bits of listed().
    PlaceBits bitsOf(const QSet<int> &ids) const;
    // Prepares what text listing and matching read (lower-cased and folded names and addresses);
    // done on first need otherwise.
    void fold() const;

    int size() const { return int(m_places.size()); }

private:
    struct Place {
        int id = 0;
        bool named = false; // false when the catalogue has no name for it
        int rank = -1;   // position by sort name; -1 without one (never listed)
        int letter = 0;  // index into m_letters
    };
    int positionOf(int id) const;
    // Makes the lookup from place id to position.
    void indexPositions();
    // Takes `letters` as the section letters (see the definition for how they are kept).
    void setLetters(const QStringList &letters);
    // A place's folded name and address, once folded.
    QStringView foldedName(size_t position) const;
    QStringView foldedAddress(size_t position) const;
    QStringView nameAt(size_t position) const;
    // Leaves in `places` only those matching `words`.
    void keepMatching(PlaceBits &places, const QStringList &words) const;
    QList<SortedEntry> entriesOf(const PlaceBits &places, const QString &text) const;

    std::vector<Place> m_places;
    std::vector<int> m_denseIds;  // place id -> index into m_places, -1 for none (ids are small)
    QHash<int, int> m_positions;  // the same when ids are too sparse for a vector
    std::vector<std::pair<int, int>> m_byRank; // rank -> (place id, letter)
    QStringList m_letters;        // section letters, ascending
    // Names as read, end to end in read order: a listing walks them in that order, so they
    // stream through the cache. Entry i spans [offsets[i], offsets[i + 1]).
    QString m_names;
    std::vector<qsizetype> m_nameOffsets;
    // Addresses as read, the same way; let go once folded (under the mutex, as a save may be
    // reading them).
    mutable QString m_readAddresses;
    mutable std::vector<qsizetype> m_readAddressOffsets;
    mutable std::mutex m_readAddressesMutex;

    mutable std::once_flag m_folded;
    // The names lower-cased, at the same offsets, and the letters each has (LetterMask).
    mutable QString m_loweredNames;
    mutable std::vector<quint64> m_nameLetters;
    // Folded names and addresses for matching, kept end to end the same way.
    mutable QString m_foldedNames;
    mutable QString m_foldedAddresses;
    mutable std::vector<qsizetype> m_foldedNameOffsets;
    mutable std::vector<qsizetype> m_foldedAddressOffsets;
    mutable PlaceGrams m_grams; // over the folded text
};

// The listing kept in a file between starts: reading 100,000 places back from it is a few
// copies, against a whole decrypted pass over the catalogue.
#include "catalogue/PlaceListing.h"

#include <QFile>
#include <QSaveFile>

#include <zlib.h>

#include <array>
#include <cstring>

namespace {

constexpr std::array<char, 4> magic{'V', 'L', 'S', 'T'};
// Anything that changes what is written, or what read() makes, changes this.
constexpr quint32 format = 1;
constexpr qint64 placeFields = 4; // id, named, rank, letter

class Writer
{
public:
    explicit Writer(const QString &path) : m_file(path) { m_ok = m_file.open(QIODevice::WriteOnly); }

    void bytes(const void *data, qint64 size)
    {
        if (!m_ok || size == 0)
            return;
        const auto *from = static_cast<const char *>(data);
        m_crc = crc32_z(m_crc, reinterpret_cast<const Bytef *>(from), size_t(size));
        m_ok = m_file.write(from, size) == size;
    }
    template <typename T> void value(T v) { bytes(&v, sizeof v); }
    template <typename T> void array(const T *data, qint64 count)
    {
        value<quint64>(quint64(count));
        bytes(data, count * qint64(sizeof(T)));
    }
    void text(QStringView text) { array(text.utf16(), text.size()); }
    bool commit()
    {
        const quint32 crc = quint32(m_crc);
        if (m_ok)
            m_ok = m_file.write(reinterpret_cast<const char *>(&crc), sizeof crc) == sizeof crc;
        return m_ok && m_file.commit();
    }

private:
    QSaveFile m_file;
    uLong m_crc = crc32_z(0, nullptr, 0);
    bool m_ok = false;
};

// Reads straight into the places the listing keeps, checking every count against what the file
// still holds before anything is made, so no garbage can ask for more memory than the file's size.
class Reader
{
public:
    explicit Reader(const QString &path) : m_file(path)
    {
        m_ok = m_file.open(QIODevice::ReadOnly);
        m_left = m_ok ? m_file.size() - qint64(sizeof(quint32)) : 0; // the checksum ends the file
        m_ok = m_ok && m_left >= 0;
    }

    bool bytes(void *into, qint64 size)
    {
        if (!m_ok || size > m_left || size < 0)
            return m_ok = false;
        if (size == 0)
            return true;
        m_ok = m_file.read(static_cast<char *>(into), size) == size;
        m_left -= size;
        m_crc = crc32_z(m_crc, static_cast<const Bytef *>(into), size_t(size));
        return m_ok;
    }
    template <typename T> bool value(T &v) { return bytes(&v, sizeof v); }
    // A count of elements of `size` bytes each that the file can still hold.
    bool count(qint64 &n, qint64 size)
    {
        quint64 read = 0;
        if (!value(read) || read > quint64(m_left / size))
            return m_ok = false;
        n = qint64(read);
        return true;
    }
    template <typename T> bool array(std::vector<T> &into)
    {
        qint64 n = 0;
        if (!count(n, sizeof(T)))
            return false;
        into.resize(size_t(n));
        return bytes(into.data(), n * qint64(sizeof(T)));
    }
    bool text(QString &into)
    {
        qint64 n = 0;
        if (!count(n, sizeof(char16_t)))
            return false;
        into.resize(n);
        return bytes(into.data(), n * qint64(sizeof(char16_t)));
    }
    bool finish()
    {
        quint32 stored = 0;
        if (!m_ok || m_left != 0 || m_file.read(reinterpret_cast<char *>(&stored), sizeof stored) != sizeof stored)
            return false;
        return stored == quint32(m_crc);
    }

private:
    QFile m_file;
    qint64 m_left = 0;
    uLong m_crc = crc32_z(0, nullptr, 0);
    bool m_ok = false;
};

// Offsets of `count` entries end to end in a text of `size`: from 0 to its end, never back.
bool spansText(const std::vector<qsizetype> &offsets, size_t count, qsizetype size)
{
    if (offsets.size() != count + 1 || offsets.front() != 0 || offsets.back() != size)
        return false;
    return std::is_sorted(offsets.begin(), offsets.end());
}

}

bool PlaceListing::save(const QString &file, const QByteArray &stamp) const
{
    // Folding lets the addresses go: a listing saved after that would have none.
    std::lock_guard lock(m_readAddressesMutex);
    if (m_readAddressOffsets.size() != m_places.size() + 1)
        return false;
    Writer out(file);
    out.bytes(magic.data(), magic.size());
    out.value(format);
    out.array(stamp.constData(), stamp.size());
    std::vector<qint32> places;
    places.reserve(m_places.size() * placeFields);
    for (const Place &place : m_places)
        places.insert(places.end(), {place.id, place.named ? 1 : 0, place.rank, place.letter});
    out.array(places.data(), qint64(places.size()));
    out.text(m_letters.join(QString()));
    std::vector<qsizetype> letterOffsets{0};
    for (const QString &letter : m_letters)
        letterOffsets.push_back(letterOffsets.back() + letter.size());
    out.array(letterOffsets.data(), qint64(letterOffsets.size()));
    out.text(m_names);
    out.array(m_nameOffsets.data(), qint64(m_nameOffsets.size()));
    out.text(m_readAddresses);
    out.array(m_readAddressOffsets.data(), qint64(m_readAddressOffsets.size()));
    return out.commit();
}

std::shared_ptr<const PlaceListing> PlaceListing::load(const QString &file, const QByteArray &stamp)
{
    Reader in(file);
    std::array<char, 4> readMagic{};
    quint32 readFormat = 0;
    std::vector<char> readStamp;
    if (!in.bytes(readMagic.data(), readMagic.size()) || readMagic != magic || !in.value(readFormat) || readFormat != format
        || !in.array(readStamp) || QByteArray(readStamp.data(), qsizetype(readStamp.size())) != stamp)
        return nullptr;

    auto listing = std::make_shared<PlaceListing>();
    std::vector<qint32> places;
    QString letterText;
    std::vector<qsizetype> letterOffsets;
    if (!in.array(places) || !in.text(letterText) || !in.array(letterOffsets) || !in.text(listing->m_names)
        || !in.array(listing->m_nameOffsets) || !in.text(listing->m_readAddresses) || !in.array(listing->m_readAddressOffsets)
        || !in.finish())
        return nullptr;

    // The checksum holds against damage; these hold against a file that lies consistently, so
    // that nothing read from it can point outside what was read.
    if (places.size() % placeFields != 0)
        return nullptr;
    const size_t count = places.size() / placeFields;
    if (letterOffsets.empty() || !spansText(letterOffsets, letterOffsets.size() - 1, letterText.size())
        || !spansText(listing->m_nameOffsets, count, listing->m_names.size())
        || !spansText(listing->m_readAddressOffsets, count, listing->m_readAddresses.size()))
        return nullptr;
    QStringList letterList;
    for (size_t i = 0; i + 1 < letterOffsets.size(); ++i)
        letterList.append(letterText.mid(letterOffsets[i], letterOffsets[i + 1] - letterOffsets[i]));
    listing->setLetters(letterList);

    // Ranks are a numbering of the ranked places: each once, none missing.
    const qint64 letters = listing->m_letters.size();
    listing->m_places.reserve(count);
    size_t ranked = 0;
    for (size_t i = 0; i < count; ++i) {
        const qint32 *fields = places.data() + i * placeFields;
        const Place place{fields[0], fields[1] != 0, fields[2], fields[3]};
        if (fields[1] < 0 || fields[1] > 1 || place.rank < -1 || qint64(place.rank) >= qint64(count)
            || (place.rank >= 0 && (place.letter < 0 || place.letter >= letters)))
            return nullptr;
        ranked += place.rank >= 0 ? 1 : 0;
        listing->m_places.push_back(place);
    }
    listing->m_byRank.assign(ranked, {0, -1});
    for (const Place &place : listing->m_places) {
        if (place.rank < 0)
            continue;
        if (size_t(place.rank) >= ranked || listing->m_byRank[size_t(place.rank)].second >= 0)
            return nullptr;
        listing->m_byRank[size_t(place.rank)] = {place.id, place.letter};
    }
    listing->indexPositions();
    return listing;
}

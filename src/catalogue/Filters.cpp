#include "catalogue/Filters.h"

#include <QVariantList>

#include <cmath>
#include <limits>
#include <optional>

namespace {

// Only whole numbers an int holds: a stored dictionary is outside input, and converting an
// out-of-range number to int is undefined.
std::optional<int> intOf(const QVariant &value)
{
    constexpr qint64 lowest = std::numeric_limits<int>::min();
    constexpr qint64 highest = std::numeric_limits<int>::max();
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::Short:
    case QMetaType::UShort:
        return value.toInt();
    case QMetaType::UInt:
    case QMetaType::LongLong: {
        const qint64 number = value.toLongLong();
        return number >= lowest && number <= highest ? std::optional<int>(int(number)) : std::nullopt;
    }
    case QMetaType::ULongLong: {
        const quint64 number = value.toULongLong();
        return number <= quint64(highest) ? std::optional<int>(int(number)) : std::nullopt;
    }
    case QMetaType::Double: { // what a JSON reader makes of a whole number
        const double number = value.toDouble();
        if (std::isfinite(number) && number == std::trunc(number) && number >= double(lowest) && number <= double(highest))
            return int(number);
        return std::nullopt;
    }
    default:
        return std::nullopt;
    }
}

QSet<int> setOf(const QVariant &value)
{
    if (value.typeId() != QMetaType::QVariantList)
        return {};
    QSet<int> ids;
    for (const QVariant &element : value.toList()) {
        const auto id = intOf(element);
        if (!id)
            return {};
        ids.insert(*id);
    }
    return ids;
}

QVariantList listOf(const QSet<int> &ids)
{
    QVariantList list;
    for (int id : ids)
        list.append(id);
    return list;
}

}

QVariantMap Filters::dictionary() const
{
    return {{QStringLiteral("municipalities"), listOf(municipalities)},
            {QStringLiteral("cuisines"), listOf(cuisines)},
            {QStringLiteral("prices"), listOf(prices)}};
}

void Filters::load(const QVariantMap &dictionary)
{
    municipalities = setOf(dictionary.value(QStringLiteral("municipalities")));
    cuisines = setOf(dictionary.value(QStringLiteral("cuisines")));
    prices = setOf(dictionary.value(QStringLiteral("prices")));
    if (const auto rank = intOf(dictionary.value(QStringLiteral("price_rank")))) {
        // Price ranks are a handful of ids; a stored rank beyond any catalogue's is capped rather
        // than turned into millions of ids.
        prices.clear();
        for (int id = 2; id < std::min(*rank, maxLegacyPriceRank); ++id)
            prices.insert(id);
    }
}

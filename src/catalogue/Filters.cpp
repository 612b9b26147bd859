#include "catalogue/Filters.h"

#include <QVariantList>

#include <cmath>
#include <optional>

namespace {

std::optional<int> intOf(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
        return value.toInt();
    case QMetaType::Double: { // what a JSON reader makes of a whole number
        const double number = value.toDouble();
        if (std::isfinite(number) && number == std::trunc(number))
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
        prices.clear();
        for (int id = 2; id < *rank; ++id)
            prices.insert(id);
    }
}

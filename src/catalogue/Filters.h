#pragma once

#include <QSet>
#include <QVariantMap>

// What the filters panel narrows a province's list to. The search screen holds one object for
// its whole life and reloads it in place, so load() replaces the sets and keeps the identity.
class Filters
{
public:
    QSet<int> municipalities; // counties.id
    QSet<int> cuisines;       // cuisines.id
    QSet<int> prices;         // price_ranks.id

    bool isEmpty() const { return municipalities.isEmpty() && cuisines.isEmpty() && prices.isEmpty(); }

    // The stored form under the settings key "filters": three arrays of ints.
    QVariantMap dictionary() const;
    // Each key holding an array of ints gives its set; anything else gives an empty set. An old
    // "price_rank" r stands for every price rank from 2 up to r - 1 (below maxLegacyPriceRank).
    void load(const QVariantMap &dictionary);
    static constexpr int maxLegacyPriceRank = 1000;

    bool operator==(const Filters &other) const = default;
};

#pragma once

#include <QList>
#include <QSet>

#include <vector>

// Each place's cuisine ids, kept flat: one sorted array of places, one of offsets and one of
// cuisines. A catalogue of 100,000 places would otherwise be 100,000 small hash sets, made,
// copied and freed on every load.
class PlaceCuisines
{
public:
    // Rows as the catalogue hands them over. Rows come grouped by place: each change of place
    // starts that place's set anew, replacing what an earlier group of it said.
    void add(int placeId, int cuisineId);
    // Call once every row is added; lookups before it see nothing.
    void finish();

    // The cuisines of a place, ascending; empty when it has none.
    QList<int> of(int placeId) const;
    // Whether the place has at least one of `cuisines`.
    bool sharesAny(int placeId, const QSet<int> &cuisines) const;
    bool contains(int placeId) const { return find(placeId) >= 0; }
    qsizetype size() const { return qsizetype(m_places.size()); }

    // These sets over `older`'s: a place this one names has this one's set, the rest keep theirs.
    PlaceCuisines overlaying(const PlaceCuisines &older) const;

private:
    struct Group {
        int place;
        int order; // position among the groups, so a later group of a place wins
        int begin;
        int end;
    };
    int find(int placeId) const;

    std::vector<Group> m_groups; // while rows are added
    std::vector<int> m_rows;     // cuisine ids in read order, while rows are added
    std::vector<int> m_places;   // sorted, distinct
    std::vector<int> m_offsets;  // place i spans [offsets[i], offsets[i + 1]) of m_cuisines
    std::vector<int> m_cuisines;
};

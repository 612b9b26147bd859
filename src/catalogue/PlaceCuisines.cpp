#include "catalogue/PlaceCuisines.h"

#include <algorithm>

void PlaceCuisines::add(int placeId, int cuisineId)
{
    if (m_groups.empty() || m_groups.back().place != placeId)
        m_groups.push_back({placeId, int(m_groups.size()), int(m_rows.size()), int(m_rows.size())});
    m_rows.push_back(cuisineId);
    m_groups.back().end = int(m_rows.size());
}

void PlaceCuisines::finish()
{
    // By place, the last group of each place first, so the first of each run is the one kept.
    std::sort(m_groups.begin(), m_groups.end(), [](const Group &a, const Group &b) {
        return a.place != b.place ? a.place < b.place : a.order > b.order;
    });
    m_places.clear();
    m_offsets.assign(1, 0);
    m_cuisines.clear();
    m_cuisines.reserve(m_rows.size());
    for (size_t i = 0; i < m_groups.size(); ++i) {
        const Group &group = m_groups[i];
        if (i > 0 && m_groups[i - 1].place == group.place)
            continue;
        const auto first = m_cuisines.end() - m_cuisines.begin();
        for (int row = group.begin; row < group.end; ++row)
            m_cuisines.push_back(m_rows[size_t(row)]);
        std::sort(m_cuisines.begin() + first, m_cuisines.end());
        m_cuisines.erase(std::unique(m_cuisines.begin() + first, m_cuisines.end()), m_cuisines.end());
        m_places.push_back(group.place);
        m_offsets.push_back(int(m_cuisines.size()));
    }
    m_groups = {};
    m_rows = {};
}

int PlaceCuisines::find(int placeId) const
{
    const auto it = std::lower_bound(m_places.begin(), m_places.end(), placeId);
    return it != m_places.end() && *it == placeId ? int(it - m_places.begin()) : -1;
}

QList<int> PlaceCuisines::of(int placeId) const
{
    const int at = find(placeId);
    if (at < 0)
        return {};
    return QList<int>(m_cuisines.begin() + m_offsets[size_t(at)], m_cuisines.begin() + m_offsets[size_t(at) + 1]);
}

bool PlaceCuisines::sharesAny(int placeId, const QSet<int> &cuisines) const
{
    const int at = find(placeId);
    if (at < 0)
        return false;
    return std::any_of(m_cuisines.begin() + m_offsets[size_t(at)], m_cuisines.begin() + m_offsets[size_t(at) + 1],
                       [&](int cuisine) { return cuisines.contains(cuisine); });
}

PlaceCuisines PlaceCuisines::overlaying(const PlaceCuisines &older) const
{
    PlaceCuisines merged;
    merged.m_offsets.assign(1, 0);
    const auto take = [&merged](const PlaceCuisines &from, size_t at) {
        merged.m_places.push_back(from.m_places[at]);
        merged.m_cuisines.insert(merged.m_cuisines.end(), from.m_cuisines.begin() + from.m_offsets[at],
                                 from.m_cuisines.begin() + from.m_offsets[at + 1]);
        merged.m_offsets.push_back(int(merged.m_cuisines.size()));
    };
    size_t mine = 0, theirs = 0;
    while (mine < m_places.size() || theirs < older.m_places.size()) {
        if (theirs == older.m_places.size() || (mine < m_places.size() && m_places[mine] <= older.m_places[theirs])) {
            if (theirs < older.m_places.size() && older.m_places[theirs] == m_places[mine])
                ++theirs;
            take(*this, mine++);
        } else {
            take(older, theirs++);
        }
    }
    return merged;
}

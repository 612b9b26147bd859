#include "catalogue/PlaceMunicipalities.h"

#include <algorithm>

namespace {
bool byPlace(const PlaceMunicipalities::Entry &a, const PlaceMunicipalities::Entry &b) { return a.first < b.first; }
}

void PlaceMunicipalities::overlay(std::vector<Entry> places)
{
    // A catalogue's places come in table order, which is id order: the sort is nearly never run.
    if (!std::is_sorted(places.begin(), places.end(), byPlace))
        std::stable_sort(places.begin(), places.end(), byPlace);
    // Of a run of one place, the last entry stands.
    std::vector<Entry> added;
    added.reserve(places.size());
    for (const Entry &entry : places) {
        if (!added.empty() && added.back().first == entry.first)
            added.back() = entry;
        else
            added.push_back(entry);
    }
    if (m_sorted.empty()) {
        m_sorted = std::move(added);
        return;
    }
    std::vector<Entry> merged;
    merged.reserve(m_sorted.size() + added.size());
    auto older = m_sorted.cbegin();
    for (const Entry &entry : added) {
        for (; older != m_sorted.cend() && older->first < entry.first; ++older)
            merged.push_back(*older);
        if (older != m_sorted.cend() && older->first == entry.first)
            ++older;
        merged.push_back(entry);
    }
    merged.insert(merged.end(), older, m_sorted.cend());
    m_sorted = std::move(merged);
}

std::optional<int> PlaceMunicipalities::of(int placeId) const
{
    const auto found = std::lower_bound(m_sorted.cbegin(), m_sorted.cend(), Entry{placeId, 0}, byPlace);
    if (found == m_sorted.cend() || found->first != placeId)
        return std::nullopt;
    return found->second;
}

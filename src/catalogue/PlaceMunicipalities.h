#pragma once

#include <optional>
#include <utility>
#include <vector>

// Which municipality each place is in, as one array of (place, municipality) sorted by place
// and looked up by halving. A catalogue of 100,000 places fills it in one pass, where a hash
// would make and link a node for every place on the start's path.
class PlaceMunicipalities
{
public:
    using Entry = std::pair<int, int>; // (place id, municipality id)

    // Adds `places`, in any order; for a place named twice the later entry stands. A place
    // already here takes the municipality `places` gives it: ids are stable between catalogue
    // versions, so the newer catalogue's word wins and the rest stay.
    void overlay(std::vector<Entry> places);
    std::optional<int> of(int placeId) const;
    size_t size() const { return m_sorted.size(); }

private:
    std::vector<Entry> m_sorted; // by place id, one entry a place
};

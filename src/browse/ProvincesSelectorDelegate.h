#pragma once

// Told which province the user picked. The search screen is the one who listens: it reloads
// everything and closes the picker.
class ProvincesSelectorDelegate
{
public:
    virtual ~ProvincesSelectorDelegate() = default;
    virtual void provinceSelected(int id, bool keepFilters) = 0;
};

#pragma once

class Filters;

// Hears every change the filters panel makes, at once: the panel has no apply step.
class FiltersDelegate
{
public:
    virtual ~FiltersDelegate() = default;
    virtual void filtersChanged(const Filters &filters) = 0;
};

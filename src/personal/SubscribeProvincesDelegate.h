#pragma once

#include <QSet>

// Told when the province choice ends: cancelled, or finished with what is now subscribed.
class SubscribeProvincesDelegate
{
public:
    virtual ~SubscribeProvincesDelegate() = default;
    virtual void provinceSelectionDidCancel() = 0;
    virtual void provinceSelectionDidFinish(const QSet<int> &provinces) = 0;
};

#include "personal/Subscription.h"

#include "catalogue/Restaurants.h"
#include "platform/DefaultKeys.h"
#include "platform/Telephony.h"
#include "platform/UserDefaults.h"

#include <algorithm>

bool Subscription::isAvailable(const UserDefaults &defaults, const Restaurants &restaurants)
{
    // Once a catalogue is open, it must name the number the message goes to. Before (a start
    // whose catalogue is still loading) the rest of the rule decides, and is asked again after.
    if (!restaurants.databasePath().isEmpty() && restaurants.subscriptionPhoneNumber().trimmed().isEmpty())
        return false;
    if (defaults.boolForKey(DefaultKeys::devEnableSubscribe))
        return true;
    const Telephony &telephony = Telephony::shared();
    const std::optional<QString> country = telephony.mobileCountryCode();
    return country && *country == QLatin1String("368") && telephony.canSendText();
}

std::optional<QSet<int>> Subscription::provinces(const UserDefaults &defaults)
{
    // The store's own reading of an integer array; anything it can't read as one is no choice.
    if (!defaults.objectForKey(DefaultKeys::subscriptionProvinces).isValid())
        return std::nullopt;
    const QList<int> ids = defaults.intArrayForKey(DefaultKeys::subscriptionProvinces);
    return QSet<int>(ids.cbegin(), ids.cend());
}

void Subscription::setProvinces(UserDefaults &defaults, const QSet<int> &ids)
{
    QList<int> sorted(ids.cbegin(), ids.cend());
    std::sort(sorted.begin(), sorted.end());
    defaults.setIntArray(sorted, DefaultKeys::subscriptionProvinces);
}

bool Subscription::isSubscribed(const UserDefaults &defaults)
{
    const std::optional<QSet<int>> stored = provinces(defaults);
    return stored && !stored->isEmpty();
}

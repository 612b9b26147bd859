#pragma once

#include <QSet>

#include <optional>

class Restaurants;
class UserDefaults;

// The SMS subscription's availability and the stored choice of provinces. No instances.
class Subscription
{
public:
    // Offered when the developer switch is on, or on a SIM of the country's carrier (code "368")
    // that can send text; never when the open catalogue names no number to send to.
    static bool isAvailable(const UserDefaults &defaults, const Restaurants &restaurants);
    // The stored choice; nothing when none is stored or it isn't an array of integers.
    static std::optional<QSet<int>> provinces(const UserDefaults &defaults);
    static void setProvinces(UserDefaults &defaults, const QSet<int> &ids);
    static bool isSubscribed(const UserDefaults &defaults);
};

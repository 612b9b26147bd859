#pragma once

#include <QString>

// Names of the notifications posted on the default NotificationCenter, with no object.
namespace Notifications {
// A catalogue has been (re)loaded; observers rebuild their lists.
inline const QString RestaurantsDidReload = QStringLiteral("RestaurantsDidReload");
// What the lists must show has changed; the catalogue has not.
inline const QString VelmoraReloadRestaurants = QStringLiteral("VelmoraReloadRestaurants");
// The first catalogue became ready during the first run.
inline const QString RestaurantsLoaded = QStringLiteral("RestaurantsLoaded");
// A look for the first catalogue found none the guide can use; it looks again shortly.
inline const QString RestaurantsNotLoaded = QStringLiteral("RestaurantsNotLoaded");
inline const QString VelmoraReloadInfoScreen = QStringLiteral("VelmoraReloadInfoScreen");
inline const QString VelmoraUserSubscriptionChanged = QStringLiteral("VelmoraUserSubscriptionChanged");
inline const QString MyPlacesExplore = QStringLiteral("MyPlacesExplore");
// A stand-in for shaking the device (the developer tool).
inline const QString VelmoraShake = QStringLiteral("VelmoraShake");
}

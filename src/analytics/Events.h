#pragma once

#include <QtGlobal>

// The app's whole analytics vocabulary: each call is one event (or the one screen view), sent
// through the shared tracker on the main thread. A report never fails the caller, and with the
// user opted out it goes nowhere.
namespace Events {

// Where an ad was shown or tapped; each has its own label.
enum class AdPlacement {
    DiscoverFeed, // "Promo": the value is the ad's ad_id
    PlaceCard,    // "Profile": the value is the ad's image_id
    MoreInfo,     // "+Info": the value is the ad's image_id
};

void openedSideMenu();
void tappedPlace();
void tappedOffer();
void tappedPromo();
void swipedPlaceCell();
void adShown(AdPlacement placement, qint64 value);
void adAction(AdPlacement placement, qint64 value);
// The place card's screen name, set and sent as a screen view each time it appears.
void placeCardAppeared();

}

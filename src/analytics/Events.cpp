#include "analytics/Events.h"

#include "analytics/HitBuilder.h"
#include "analytics/Measurement.h"

namespace Events {

namespace {
void event(const QString &category, const QString &action, const QString &label, qint64 value)
{
    Measurement::sharedInstance().defaultTracker().send(HitBuilder::createEventWithCategory(category, action, label, value).build());
}

QString adLabel(AdPlacement placement)
{
    switch (placement) {
    case AdPlacement::DiscoverFeed:
        return QStringLiteral("Promo");
    case AdPlacement::PlaceCard:
        return QStringLiteral("Profile");
    case AdPlacement::MoreInfo:
        return QStringLiteral("+Info");
    }
    return {};
}
}

void openedSideMenu() { event(QStringLiteral("Navigation"), QStringLiteral("Opened side menu"), QString(), 0); }
void tappedPlace() { event(QStringLiteral("Navigation"), QStringLiteral("Tapped"), QStringLiteral("Place"), 1); }
void tappedOffer() { event(QStringLiteral("Navigation"), QStringLiteral("Tapped"), QStringLiteral("Offer"), 1); }
void tappedPromo() { event(QStringLiteral("Navigation"), QStringLiteral("Tapped"), QStringLiteral("Promo"), 1); }
void swipedPlaceCell() { event(QStringLiteral("Places"), QStringLiteral("Swiped"), QStringLiteral("Cell"), 1); }
void adShown(AdPlacement placement, qint64 value) { event(QStringLiteral("ADV Campaigns"), QStringLiteral("Show"), adLabel(placement), value); }
void adAction(AdPlacement placement, qint64 value) { event(QStringLiteral("ADV Campaigns"), QStringLiteral("Action"), adLabel(placement), value); }

void placeCardAppeared()
{
    TrackerImpl &tracker = Measurement::sharedInstance().defaultTracker();
    tracker.set(QStringLiteral("&cd"), QStringLiteral("RestaurantView"));
    tracker.send(HitBuilder::createScreenView().build());
}

}

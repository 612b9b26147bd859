#include "PlaceCards.h"

#include "catalogue/Restaurants.h"
#include "presentation/NavigationController.h"
#include "presentation/Storyboard.h"

bool showPlaceCard(NavigationController *navigation, Restaurants &restaurants, int id, QObject *parent, bool animated)
{
    const auto info = id >= 0 ? restaurants.restaurantInfo(id) : std::nullopt;
    if (!navigation || !info)
        return false;
    ViewController *card = Storyboard::instantiate(QStringLiteral("Lugar"), QStringLiteral("lugar-view-controller"), parent);
    if (!card)
        return false;
    card->setTitle(info->name);
    // Until the card lands, its stand-in says where the place is and how to call it.
    QStringList details{info->address};
    details += restaurants.phones(id);
    details.removeAll(QString());
    card->setProperty("message", details.join(QLatin1Char('\n')));
    navigation->pushViewController(card, animated);
    return true;
}

#include "PlaceCards.h"

#include "LugarTableViewController.h"
#include "PhoneNumbersViewController.h"
#include "catalogue/Restaurants.h"
#include "platform/Dispatch.h"
#include "presentation/NavigationController.h"
#include "presentation/Storyboard.h"

#include <QPointer>

bool showPlaceCard(NavigationController *navigation, Restaurants &restaurants, int id, QObject *parent, bool animated)
{
    auto info = id >= 0 ? restaurants.restaurantInfo(id) : std::nullopt;
    if (!navigation || !info)
        return false;
    auto *card = qobject_cast<LugarTableViewController *>(Storyboard::instantiate(QStringLiteral("Lugar"), QStringLiteral("lugar-view-controller"), parent));
    if (!card)
        return false;
    card->restInfo = std::move(info);
    // A card lives while it is on the stack; it goes once its page has slid away.
    QObject::connect(navigation, &NavigationController::stackChanged, card, [navigation, card] {
        if (navigation->viewControllers().contains(card))
            return;
        QObject::disconnect(navigation, nullptr, card, nullptr);
        dispatchAfter(1000, [card = QPointer(card)] { delete card.data(); });
    });
    navigation->pushViewController(card, animated);
    return true;
}

bool showPhoneNumbers(NavigationController *navigation, Restaurants &restaurants, int id, QObject *parent)
{
    if (!navigation)
        return false;
    auto *sheet = qobject_cast<PhoneNumbersViewController *>(Storyboard::instantiate(QStringLiteral("Lugar"), QStringLiteral("phone-numbers-vc"), parent));
    if (!sheet)
        return false;
    sheet->setNumbers(restaurants.phones(id));
    navigation->presentViewController(sheet, true, Presentation::bottomSheet(PhoneNumbersViewController::sheetHeight(sheet->numbers().size())));
    return true;
}

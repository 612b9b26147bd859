#include "app/LinkRouter.h"

#include "app/SideMenuTableViewController.h"
#include "browse/BuscarViewController.h"
#include "placecard/LugarTableViewController.h"
#include "presentation/NavigationController.h"
#include "presentation/Storyboard.h"

namespace {
const QString searchRow = QStringLiteral("browse");
}

bool LinkRouter::follow(const DeepLink &link, bool animated, QString *why)
{
    const auto fail = [why](const QString &reason) {
        if (why)
            *why = reason;
        return false;
    };
    // A link to nothing moves nothing: the screen the user is on stays.
    if ((link.kind == DeepLink::Kind::Place || (link.kind == DeepLink::Kind::Map && link.id > 0)) && !m_search.hasPlace(link.id))
        return fail(QStringLiteral("no place %1").arg(link.id));
    if (link.kind == DeepLink::Kind::Province && !m_search.hasProvince(link.id))
        return fail(QStringLiteral("no province %1").arg(link.id));
    switch (link.kind) {
    case DeepLink::Kind::Place:
        // The card goes on the search screen's stack, so back returns to the list.
        m_menu.selectRowWithKey(searchRow);
        return m_search.openPlace(link.id, animated) || fail(QStringLiteral("no place %1").arg(link.id));
    case DeepLink::Kind::Province:
        m_menu.selectRowWithKey(searchRow);
        return m_search.switchProvince(link.id) || fail(QStringLiteral("no province %1").arg(link.id));
    case DeepLink::Kind::Search:
        m_menu.selectRowWithKey(searchRow);
        m_search.searchFor(link.text);
        return true;
    case DeepLink::Kind::Offers:
    case DeepLink::Kind::Discover: {
        m_menu.selectRowWithKey(searchRow);
        const QString tab = link.kind == DeepLink::Kind::Offers ? QStringLiteral("offers") : QStringLiteral("discover");
        return m_search.showTabKind(tab) || fail(QStringLiteral("this province has no %1").arg(tab));
    }
    case DeepLink::Kind::Map: {
        if (link.id <= 0)
            return m_menu.selectRowWithKey(QStringLiteral("map")) || fail(QStringLiteral("no map in the menu"));
        // A place's map is reached through its card, so back leads to the card and the list.
        m_menu.selectRowWithKey(searchRow);
        if (!m_search.openPlace(link.id, animated))
            return fail(QStringLiteral("no place %1").arg(link.id));
        NavigationController *navigation = m_search.navigationController();
        auto *card = navigation ? qobject_cast<LugarTableViewController *>(navigation->topViewController()) : nullptr;
        if (!card || !card->shouldPerformSegue(QStringLiteral("lugar-show-map")))
            return fail(QStringLiteral("place %1 has no position").arg(link.id));
        ViewController *map = Storyboard::instantiate(QStringLiteral("Lugar"), QStringLiteral("lugar-map-view-controller"), card);
        if (!map)
            return fail(QStringLiteral("no map screen"));
        map->setProperty("rid", link.id);
        navigation->pushViewController(map, animated);
        return true;
    }
    case DeepLink::Kind::MyPlaces:
        return m_menu.selectRowWithKey(QStringLiteral("myplaces")) || fail(QStringLiteral("no my places in the menu"));
    case DeepLink::Kind::Settings:
        return m_menu.selectRowWithKey(QStringLiteral("settings")) || fail(QStringLiteral("no settings in the menu"));
    case DeepLink::Kind::Info:
        return m_menu.selectRowWithKey(QStringLiteral("info")) || fail(QStringLiteral("no info in the menu"));
    }
    return fail(QStringLiteral("unknown destination"));
}

#include "app/Scenes.h"

#include "browse/BuscarViewController.h"
#include "browse/PhoneNumbersViewController.h"
#include "catalogue/Restaurants.h"
#include "presentation/PlaceholderViewController.h"
#include "presentation/Storyboard.h"

namespace {

void placeholder(const char *storyboard, const char *identifier, const char *titleKey, const char *message,
                 PlaceholderViewController::Place place)
{
    Storyboard::registerScene(QString::fromLatin1(storyboard), QString::fromLatin1(identifier),
                              [=](QObject *parent) -> ViewController * {
                                  return new PlaceholderViewController(titleKey, QString::fromUtf8(message), place, parent);
                              });
}

}

void registerApplicationScenes()
{
    static bool registered = false;
    if (registered)
        return;
    registered = true;

    Storyboard::registerScene(QStringLiteral("Buscar"), QStringLiteral("search-view-controller"),
                              [](QObject *parent) -> ViewController * { return new BuscarViewController(Restaurants::shared(), parent); });
    Storyboard::registerScene(QStringLiteral("Lugar"), QStringLiteral("phone-numbers-vc"),
                              [](QObject *parent) -> ViewController * { return new PhoneNumbersViewController(parent); });

    using Place = PlaceholderViewController::Place;
    placeholder("Buscar", "descubre-view-controller", "search_discover", "The discover feed arrives with its own screen.", Place::Pushed);
    placeholder("Buscar", "offers-view-controller", "search_offers", "The offers list arrives with its own screen.", Place::Pushed);
    placeholder("Buscar", "provinces-view-controller", nullptr, "The province picker arrives with its own screen.", Place::Presented);
    placeholder("Filtros", "filters-view-controller", "filters_title", "The filters panel arrives with its own screen.", Place::Presented);
    placeholder("Lugar", "lugar-view-controller", nullptr, "The place card arrives with its own screen.", Place::Pushed);
    placeholder("Main", "map-view-controller", "map_title", "The map arrives with its own screen.", Place::TopLevel);
    placeholder("Main", "my-places-view-controller", "myplaces_title", "My places arrives with its own screen.", Place::TopLevel);
    placeholder("Info_Settings", "info-view-controller", "sidemenu_info", "The info screen arrives with its own screen.", Place::TopLevel);
    placeholder("Info_Settings", "settings-view-controller", "settings_title", "Settings arrive with their own screen.", Place::TopLevel);
    placeholder("Walkthrough", "subscribe-intro", "notifications_receive_more_info", "The SMS subscription arrives with its own screens.",
                Place::Presented);
}

#include "app/Scenes.h"

#include "browse/BuscarViewController.h"
#include "browse/FiltersViewController.h"
#include "browse/OfertasTableViewController.h"
#include "browse/ProvincesTableViewController.h"
#include "app/AppDelegate.h"
#include "catalogue/Restaurants.h"
#include "info/InfoTableViewController.h"
#include "map/MapViewController.h"
#include "update/Downloader.h"
#include "personal/FortunesViewController.h"
#include "personal/MyPlacesViewController.h"
#include "personal/SettingsTableViewController.h"
#include "personal/SubscribeIntroViewController.h"
#include "personal/SubscribeProvincesViewController.h"
#include "personal/UserDefaultsTableViewController.h"
#include "placecard/GalleryViewController.h"
#include "placecard/LugarTableViewController.h"
#include "placecard/MenuTableViewController.h"
#include "placecard/MoreInfoTableViewController.h"
#include "placecard/PhoneNumbersViewController.h"
#include "placecard/SaveToMyPlacesViewController.h"
#include "platform/Paths.h"
#include "platform/UserDefaults.h"
#include "presentation/Storyboard.h"

void registerApplicationScenes()
{
    static bool registered = false;
    if (registered)
        return;
    registered = true;

    Storyboard::registerScene(QStringLiteral("Buscar"), QStringLiteral("search-view-controller"),
                              [](QObject *parent) -> ViewController * { return new BuscarViewController(Restaurants::shared(), parent); });
    Storyboard::registerScene(QStringLiteral("Buscar"), QStringLiteral("provinces-view-controller"), [](QObject *parent) -> ViewController * {
        return new ProvincesTableViewController(Restaurants::shared(), parent);
    });
    Storyboard::registerScene(QStringLiteral("Filtros"), QStringLiteral("filters-view-controller"), [](QObject *parent) -> ViewController * {
        return new FiltersViewController(Restaurants::shared(), parent);
    });
    Storyboard::registerScene(QStringLiteral("Buscar"), QStringLiteral("offers-view-controller"), [](QObject *parent) -> ViewController * {
        return new OfertasTableViewController(Restaurants::shared(), parent);
    });
    Storyboard::registerScene(QStringLiteral("Lugar"), QStringLiteral("phone-numbers-vc"),
                              [](QObject *parent) -> ViewController * { return new PhoneNumbersViewController(parent); });
    Storyboard::registerScene(QStringLiteral("Lugar"), QStringLiteral("lugar-view-controller"), [](QObject *parent) -> ViewController * {
        return new LugarTableViewController(Restaurants::shared(), UserDefaults::standard(), parent);
    });
    Storyboard::registerScene(QStringLiteral("Lugar"), QStringLiteral("pictures-nav-controller"),
                              [](QObject *parent) -> ViewController * { return new GalleryViewController(parent); });
    Storyboard::registerScene(QStringLiteral("Lugar"), QStringLiteral("menu-view-controller"), [](QObject *parent) -> ViewController * {
        return new MenuTableViewController(Restaurants::shared(), parent);
    });
    Storyboard::registerScene(QStringLiteral("Lugar"), QStringLiteral("more-info-view-controller"), [](QObject *parent) -> ViewController * {
        return new MoreInfoTableViewController(Restaurants::shared(), parent);
    });
    Storyboard::registerScene(QStringLiteral("Lugar"), QStringLiteral("save-to-myplaces-vc"), [](QObject *parent) -> ViewController * {
        return new SaveToMyPlacesViewController(UserDefaults::standard(), parent);
    });
    Storyboard::registerScene(QStringLiteral("Main"), QStringLiteral("my-places-view-controller"), [](QObject *parent) -> ViewController * {
        return new MyPlacesViewController(Restaurants::shared(), UserDefaults::standard(), parent);
    });

    Storyboard::registerScene(QStringLiteral("Info_Settings"), QStringLiteral("info-view-controller"), [](QObject *parent) -> ViewController * {
        AppDelegate *app = AppDelegate::global();
        return new InfoTableViewController(Restaurants::shared(), UserDefaults::standard(), app ? app->updateChecker() : nullptr,
                                           Downloader::shared(), parent);
    });

    // The global map from the side menu and the single-place map from a card: one screen.
    const auto map = [](QObject *parent) -> ViewController * { return new MapViewController(Restaurants::shared(), Paths::documents(), parent); };
    Storyboard::registerScene(QStringLiteral("Main"), QStringLiteral("map-view-controller"), map);
    Storyboard::registerScene(QStringLiteral("Lugar"), QStringLiteral("lugar-map-view-controller"), map);

    Storyboard::registerScene(QStringLiteral("Info_Settings"), QStringLiteral("settings-view-controller"), [](QObject *parent) -> ViewController * {
        return new SettingsTableViewController(Restaurants::shared(), UserDefaults::standard(), parent);
    });
    Storyboard::registerScene(QStringLiteral("Info_Settings"), QStringLiteral("user-defaults-view-controller"), [](QObject *parent) -> ViewController * {
        return new UserDefaultsTableViewController(UserDefaults::standard(), parent);
    });

    Storyboard::registerScene(QStringLiteral("Main"), QStringLiteral("fortunes-view-controller"),
                              [](QObject *parent) -> ViewController * { return new FortunesViewController(parent); });

    Storyboard::registerScene(QStringLiteral("Walkthrough"), QStringLiteral("subscribe-intro"), [](QObject *parent) -> ViewController * {
        return new SubscribeIntroViewController(Restaurants::shared(), UserDefaults::standard(), parent);
    });
    Storyboard::registerScene(QStringLiteral("Walkthrough"), QStringLiteral("subscribe-provinces"), [](QObject *parent) -> ViewController * {
        return new SubscribeProvincesViewController(Restaurants::shared(), UserDefaults::standard(), parent);
    });
}

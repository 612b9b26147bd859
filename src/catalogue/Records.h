#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>

#include <cmath>
#include <optional>
#include <utility>

// The short form of a place, for list cells.
struct Brief {
    int id = 0;
    QString name;
    QStringList cuisines; // names in the language of the first request; ids without a name left out
    QString address;
    bool hasPhone = false;
    bool outOfService = false;
};

// A place's position on the map.
struct Location {
    double latitude = 0;
    double longitude = 0;

    // Whether a map can show it: finite, a real longitude, and within the latitudes a square
    // web map reaches (85.05 degrees either way). Anything else is a data error.
    static bool isMappable(double latitude, double longitude)
    {
        return std::isfinite(latitude) && std::isfinite(longitude) && std::abs(latitude) <= 85.05112878 && std::abs(longitude) <= 180.0;
    }
};

// The full record of a place, for its card.
struct RestaurantInfo {
    int id = 0;
    QString name;
    QString priceRank;
    QString address;
    QString hours;
    QString cuisines; // joined with ", " in the order of the link table
    QString description;
    int offers = 0;
    bool hasMenu = false;
    bool hasGallery = false;
    bool hasPhone = false;
    bool outOfService = false;
    QString outOfServiceReason;
    std::optional<Location> location;
};

// What the more-info screen lists.
struct MoreInfo {
    QString name;
    QString website;
    QStringList emails;
    QStringList service_types;
    QStringList place_options;
    QStringList payment_options;
    QString rest_group;
};

struct MenuSection {
    QString name;
    QList<std::pair<QString, double>> entries; // dish and price
};

struct Menu {
    QString desc;
    QList<MenuSection> sections;
};

struct Oferta {
    int rid = 0;
    QString name;
    QString rest_name;
    QString description;
    double price = 0;
    QDateTime valid_from;
    QDateTime valid_to;
};

struct Promo {
    int promo_id = 0;
    int rid = 0;
    QDateTime valid_to;
};

// One advertising campaign with one of its pictures.
struct Ad {
    int ad_id = 0;
    QString type; // the campaign's action
    int image_id = 0;
    QString value; // the action's argument in the current language
};

struct PlaceLocation {
    double latitude = 0;
    double longitude = 0;
    int id = 0;
};

// A place in list order with the letter of its section.
struct SortedEntry {
    int id = 0;
    QString letter;
    bool operator==(const SortedEntry &other) const = default;
};


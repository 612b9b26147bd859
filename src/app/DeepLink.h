#pragma once

#include <QString>
#include <QUrl>

#include <optional>

// A velmora:// link: where it leads and what it carries. Parsing knows nothing of screens, so a
// link can be checked before there is any interface to act on it.
struct DeepLink {
    enum class Kind { Place, Province, Search, Map, MyPlaces, Settings, Info, Offers, Discover };

    Kind kind = Kind::Place;
    int id = 0;   // the place or province; for the map, the place to show (0: none)
    QString text; // what a search link types

    static constexpr const char *scheme = "velmora";

    // The link, or nothing with `why` saying what is wrong with it.
    static std::optional<DeepLink> parse(const QString &link, QString *why = nullptr);
    // Whether the text looks like one of our links at all (the command line's positional
    // argument is taken as a link only then).
    static bool looksLikeLink(const QString &text);

    bool operator==(const DeepLink &) const = default;
};

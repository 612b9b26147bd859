#pragma once

#include <QSet>
#include <QString>

class UserDefaults;

// The user's three lists of places, kept in the settings store as arrays of place ids under
// "favoritos", "visitados" and "porVisitar". A place may stand in any of them at once; the
// lists aren't bound to a province and outlive the catalogue that named their places.
struct MyPlacesLists {
    enum List { favoritos, visitados, porVisitar };
    static constexpr int count = 3;

    QSet<int> sets[count];

    static QString key(int list);
    // A key that is missing or holds something other than numbers reads as an empty list; the
    // next save writes it back whole.
    void load(const UserDefaults &defaults);
    void save(UserDefaults &defaults) const;
    void saveList(UserDefaults &defaults, int list) const;

    bool contains(int list, int id) const { return list >= 0 && list < count && sets[list].contains(id); }
    // Adds the place if it isn't in the list, removes it if it is.
    void toggle(int list, int id);
};

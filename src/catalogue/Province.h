#pragma once

#include <QList>
#include <QMap>
#include <QSet>
#include <QString>

// A province with its municipalities and places, as loaded from the catalogue. Shared by
// reference: screens hold the same object the catalogue keeps.
struct Province {
    QString name;                    // display name in the current language; empty until named
    QMap<int, QString> municipalities; // municipality id to name
    QList<int> restaurants;          // place ids in the catalogue's table order
    bool has_offers = false;
    bool has_promos = false;

    // Every municipality's id: what the search screen filters by when the user chose none.
    QSet<int> municipalityIds() const { return QSet<int>(municipalities.keyBegin(), municipalities.keyEnd()); }
};

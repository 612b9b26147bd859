#pragma once

#include "catalogue/Records.h"

#include <QList>
#include <QString>

// One section of the list: its index letter and its places in display order.
struct Section {
    QString name;
    QList<int> ids;
    bool operator==(const Section &other) const = default;
};

// Groups an ordered list of (id, letter) into sections: digits share "#", any other first
// character makes its own section, an empty letter joins the section before it.
QList<Section> groupIntoSections(const QList<SortedEntry> &entries);

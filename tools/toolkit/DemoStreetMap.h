#pragma once

#include "DemoTowns.h"

#include <QString>

struct DemoStreetMapStats {
    int nodes = 0;
    int ways = 0;
};

// Writes the demo towns as an OpenStreetMap XML file, the kind of file a publisher's extract is:
// each town's built-up area and named street grid, its blocks of buildings, a park, its name,
// and a promenade and the sea on a coastal town's shore. Written through a temporary name.
bool writeDemoStreetMap(const QList<DemoTown> &towns, const QString &path, DemoStreetMapStats &stats, QString *error);

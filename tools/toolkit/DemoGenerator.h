#pragma once

#include "CatalogueData.h"
#include "DemoTowns.h"

#include <QDate>

struct DemoOptions {
    int places = 2000;
    quint32 seed = 1;
    QDate date = QDate(2026, 11, 1);
    // Keeps the towns, and so every place, on land.
    LandTest onLand;
};

// A plausible guide to the whole country, the same for the same options: every province and
// municipality by name, places with bilingual hours and descriptions, cuisines, price ranks 2 to
// 6, menus, offers valid around the date, promotions, and a campaign of each action type.
CatalogueData makeDemo(const DemoOptions &options);

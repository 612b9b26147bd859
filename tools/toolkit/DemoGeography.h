#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// The country the guide covers: its 16 provinces, west to east with the capital first, and
// their municipalities by their real names.
struct DemoProvince {
    QString name;
    double latitude;  // a central point, for placing the demo's restaurants
    double longitude;
    QStringList municipalities;
};

const QList<DemoProvince> &demoProvinces();

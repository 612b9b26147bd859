#pragma once

#include <QList>
#include <QPolygonF>
#include <QString>
#include <QStringList>

#include <functional>
#include <random>

// The demo's towns: one street grid per municipality, near its province's centre and on land.
// The catalogue's addresses and positions and the demo's street map both come from here, so a
// place's pin lies on the street its address names.

// Whether a point (x longitude, y latitude) is on land. Without one, every point is.
using LandTest = std::function<bool(const QPointF &)>;

// The country's land as GMT gives it; an empty test when GMT is not installed. The demo's
// catalogue, its street map and the tests' demo guides all stand their towns on it.
LandTest countryLand();

enum class Waterfront { None, North, South, East, West };

struct DemoTown {
    QString name;
    int province = 0;     // index into demoProvinces()
    int municipality = 0; // index into the province's municipalities
    QPointF southWest;    // where the first street of each direction cross (longitude, latitude)
    Waterfront waterfront = Waterfront::None;

    // Street lines: east-west streets by latitude, north-south ones by longitude.
    double latitudeOf(int eastWestStreet) const;
    double longitudeOf(int northSouthStreet) const;
    // The grid's extent, half a block beyond the outer streets.
    QRectF bounds() const;
};

// Streets running east to west, from the south; and north to south, from the west.
const QStringList &demoEastWestStreets();
const QStringList &demoNorthSouthStreets();
constexpr double demoBlockLatitude = 0.0011;  // about 120 m
constexpr double demoBlockLongitude = 0.0012; // about 120 m at the country's latitudes

// Every municipality's town, by province then municipality, the same for the same land test.
QList<DemoTown> demoTowns(const LandTest &onLand);

// A Cuban address in a town: its street, the house number, the two cross streets of the block it
// lies in, and the point on the street between them that the number gives.
struct DemoAddress {
    QString street;
    int number = 0;
    QString between;
    QString andStreet;
    double latitude = 0;
    double longitude = 0;
    QString text() const;
};

DemoAddress demoAddress(const DemoTown &town, std::mt19937 &random);

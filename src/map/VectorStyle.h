#pragma once

#include <QColor>
#include <QString>

#include <optional>

// How the street map looks: colours from the base map's and the app's palette, road widths by
// class and zoom. Zooms are the display's (past the pack's last zoom too); widths are in pixels.
namespace VectorStyle {

struct Stroke {
    QColor color;
    double width = 0;
    QColor casing;          // drawn first, wider; invalid when the road has none at this zoom
    double casingWidth = 0;
    bool dashed = false;
    int order = 0;          // higher classes are drawn over lower ones
};

// A road of a class ("motorway" .. "path") at a zoom; none when the class is hidden there.
std::optional<Stroke> road(const QString &roadClass, double zoom);
// Railways and waterways.
std::optional<Stroke> railway(double zoom);
std::optional<Stroke> waterway(const QString &waterClass, double zoom);

// Area fills: water, and land use by class ("park", "wood", "residential", ...). Invalid when
// the class isn't drawn.
QColor waterFill();
QColor landuseFill(const QString &landuseClass);
QColor buildingFill();
QColor buildingOutline();

// Labels: the zoom a street's name appears from, by class, and the text's colours.
std::optional<double> roadLabelZoom(const QString &roadClass);
QColor labelColor();
QColor placeLabelColor();
QColor parkLabelColor();
QColor haloColor();
QColor houseNumberColor();
constexpr double houseNumberZoom = 18;

}

#include "map/VectorStyle.h"

#include <QHash>

#include <cmath>

namespace VectorStyle {

namespace {

struct RoadClass {
    double widthAt14; // the fill's width at zoom 14
    double fromZoom;  // hidden below
    QColor fill;
    int order;
};

const QHash<QString, RoadClass> &roadClasses()
{
    static const QHash<QString, RoadClass> classes = {
        {QStringLiteral("motorway"), {6.0, 8, QColor(0xf0, 0xa3, 0x7c), 8}},
        {QStringLiteral("trunk"), {5.5, 8, QColor(0xf6, 0xc3, 0x8a), 7}},
        {QStringLiteral("primary"), {5.0, 9, QColor(0xfb, 0xd9, 0x9b), 6}},
        {QStringLiteral("secondary"), {4.5, 10, QColor(0xfd, 0xf1, 0xb0), 5}},
        {QStringLiteral("tertiary"), {4.0, 11, QColor(0xff, 0xff, 0xff), 4}},
        {QStringLiteral("street"), {3.0, 13, QColor(0xff, 0xff, 0xff), 3}},
        {QStringLiteral("service"), {2.0, 14, QColor(0xff, 0xff, 0xff), 2}},
        {QStringLiteral("path"), {1.2, 14, QColor(0xc8, 0x7f, 0x6c), 1}},
    };
    return classes;
}

// Roads thicken with the zoom, a little less than the map grows, so a street stays a line at
// zoom 12 and a road with room for its name at 17.
double widthAt(double widthAt14, double zoom) { return std::max(0.6, widthAt14 * std::pow(1.6, zoom - 14)); }

const QColor casingColor(0xc9, 0xbb, 0xa8);

}

std::optional<Stroke> road(const QString &roadClass, double zoom)
{
    const auto found = roadClasses().constFind(roadClass);
    if (found == roadClasses().cend() || zoom < found->fromZoom)
        return std::nullopt;
    Stroke stroke;
    stroke.color = found->fill;
    stroke.width = widthAt(found->widthAt14, zoom);
    stroke.order = found->order;
    stroke.dashed = roadClass == QLatin1String("path");
    // White roads need an edge to stand out from the land; from zoom 13 every road has one.
    if (zoom >= 13 && !stroke.dashed) {
        stroke.casing = casingColor;
        stroke.casingWidth = stroke.width + std::max(1.0, stroke.width * 0.25);
    }
    return stroke;
}

std::optional<Stroke> railway(double zoom)
{
    if (zoom < 10)
        return std::nullopt;
    return Stroke{QColor(0xff, 0xff, 0xff), widthAt(1.5, zoom) * 0.6, QColor(0x99, 0x99, 0x99), widthAt(1.5, zoom), true, 0};
}

std::optional<Stroke> waterway(const QString &waterClass, double zoom)
{
    const bool river = waterClass == QLatin1String("river") || waterClass == QLatin1String("canal");
    if (zoom < (river ? 8 : 13))
        return std::nullopt;
    return Stroke{waterFill(), widthAt(river ? 4.0 : 1.5, zoom), {}, 0, false, 0};
}

QColor waterFill() { return QColor(0xa8, 0xd0, 0xdc); }

QColor landuseFill(const QString &landuseClass)
{
    static const QHash<QString, QColor> fills = {
        {QStringLiteral("park"), QColor(0xc8, 0xe6, 0xb0)},     {QStringLiteral("grass"), QColor(0xd7, 0xec, 0xc4)},
        {QStringLiteral("wood"), QColor(0xb6, 0xd8, 0xa0)},     {QStringLiteral("cemetery"), QColor(0xd0, 0xdc, 0xc8)},
        {QStringLiteral("residential"), QColor(0xee, 0xe8, 0xdc)}, {QStringLiteral("commercial"), QColor(0xf2, 0xe2, 0xdc)},
        {QStringLiteral("industrial"), QColor(0xe8, 0xe0, 0xe6)},
    };
    return fills.value(landuseClass);
}

QColor buildingFill() { return QColor(0xdc, 0xd3, 0xca); }
QColor buildingOutline() { return QColor(0xc6, 0xb9, 0xad); }

std::optional<double> roadLabelZoom(const QString &roadClass)
{
    static const QHash<QString, double> zooms = {
        {QStringLiteral("motorway"), 12}, {QStringLiteral("trunk"), 12},  {QStringLiteral("primary"), 13},
        {QStringLiteral("secondary"), 14}, {QStringLiteral("tertiary"), 14}, {QStringLiteral("street"), 15},
        {QStringLiteral("service"), 17},  {QStringLiteral("path"), 17},
    };
    const auto found = zooms.constFind(roadClass);
    return found == zooms.cend() ? std::nullopt : std::optional<double>(*found);
}

QColor labelColor() { return QColor(0x4a, 0x42, 0x38); }
QColor placeLabelColor() { return QColor(0x3a, 0x32, 0x2a); }
QColor parkLabelColor() { return QColor(0x3f, 0x6e, 0x2f); }
QColor haloColor() { return QColor(255, 255, 255, 230); }
QColor houseNumberColor() { return QColor(0x7a, 0x6e, 0x62); }

}

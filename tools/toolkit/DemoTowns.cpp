#include "DemoTowns.h"

#include "DemoGeography.h"
#include "GmtShapes.h"

#include <cmath>

namespace {

constexpr int maximumNumber = 600;

bool allOnLand(const LandTest &onLand, const QRectF &box)
{
    if (!onLand)
        return true;
    for (const QPointF &point : {box.topLeft(), box.topRight(), box.bottomLeft(), box.bottomRight(), box.center()})
        if (!onLand(point))
            return false;
    return true;
}

// The side of the town where the sea is within a few hundred metres, if any.
Waterfront waterfrontOf(const LandTest &onLand, const QRectF &box)
{
    if (!onLand)
        return Waterfront::None;
    constexpr double reach = 0.012;
    const QPointF centre = box.center();
    if (!onLand(QPointF(centre.x(), box.bottom() + reach)))
        return Waterfront::North;
    if (!onLand(QPointF(centre.x(), box.top() - reach)))
        return Waterfront::South;
    if (!onLand(QPointF(box.right() + reach, centre.y())))
        return Waterfront::East;
    if (!onLand(QPointF(box.left() - reach, centre.y())))
        return Waterfront::West;
    return Waterfront::None;
}

}

namespace {

LandTest readCountryLand()
{
    QByteArray dump;
    QString error;
    if (!runGmt({QStringLiteral("coast"), QStringLiteral("-ECU"), QStringLiteral("-M")}, dump, &error))
        return {};
    struct Part {
        QPolygonF polygon;
        QRectF bounds;
    };
    QList<Part> parts;
    for (const GmtSegment &segment : parseGmtDump(dump))
        parts.append({segment.points, segment.points.boundingRect()});
    if (parts.isEmpty())
        return {};
    return [parts](const QPointF &point) {
        for (const Part &part : parts)
            if (part.bounds.contains(point) && part.polygon.containsPoint(point, Qt::OddEvenFill))
                return true;
        return false;
    };
}

}

LandTest countryLand()
{
    // GMT is asked once per process: the shapes don't change while it runs.
    static const LandTest land = readCountryLand();
    return land;
}

const QStringList &demoEastWestStreets()
{
    static const QStringList streets = {QStringLiteral("Obispo"),  QStringLiteral("San Rafael"),    QStringLiteral("Neptuno"),
                                        QStringLiteral("Línea"),   QStringLiteral("Martí"),         QStringLiteral("Independencia"),
                                        QStringLiteral("Agramonte"), QStringLiteral("Calle Real")};
    return streets;
}

const QStringList &demoNorthSouthStreets()
{
    static const QStringList streets = {QStringLiteral("Calle 23"), QStringLiteral("Calle 17"),    QStringLiteral("Maceo"),
                                        QStringLiteral("Gómez"),    QStringLiteral("Céspedes"),    QStringLiteral("Avenida 5ta"),
                                        QStringLiteral("Prado")};
    return streets;
}

double DemoTown::latitudeOf(int eastWestStreet) const { return southWest.y() + eastWestStreet * demoBlockLatitude; }

double DemoTown::longitudeOf(int northSouthStreet) const { return southWest.x() + northSouthStreet * demoBlockLongitude; }

QRectF DemoTown::bounds() const
{
    const double width = (demoNorthSouthStreets().size() - 1) * demoBlockLongitude;
    const double height = (demoEastWestStreets().size() - 1) * demoBlockLatitude;
    return QRectF(southWest.x() - demoBlockLongitude / 2, southWest.y() - demoBlockLatitude / 2, width + demoBlockLongitude,
                  height + demoBlockLatitude);
}

QList<DemoTown> demoTowns(const LandTest &onLand)
{
    QList<DemoTown> towns;
    const QList<DemoProvince> &provinces = demoProvinces();
    for (int p = 0; p < provinces.size(); ++p) {
        const DemoProvince &province = provinces[p];
        // Candidate places on a sunflower spiral around the province's centre, a few kilometres
        // apart; a town takes the next one whose whole grid is on land.
        int candidate = 0;
        for (int m = 0; m < province.municipalities.size(); ++m) {
            DemoTown town;
            town.name = province.municipalities[m];
            town.province = p;
            town.municipality = m;
            for (int tries = 0; tries < 400; ++tries, ++candidate) {
                const double angle = candidate * 2.39996;
                const double radius = 0.03 * std::sqrt(candidate + 0.3);
                const QPointF centre(province.longitude + radius * std::cos(angle), province.latitude + radius * std::sin(angle));
                town.southWest = centre - QPointF((demoNorthSouthStreets().size() - 1) * demoBlockLongitude / 2,
                                                  (demoEastWestStreets().size() - 1) * demoBlockLatitude / 2);
                if (allOnLand(onLand, town.bounds()))
                    break;
            }
            ++candidate;
            town.waterfront = waterfrontOf(onLand, town.bounds());
            towns.append(town);
        }
    }
    return towns;
}

QString DemoAddress::text() const { return QStringLiteral("%1 No. %2 e/ %3 y %4").arg(street).arg(number).arg(between, andStreet); }

DemoAddress demoAddress(const DemoTown &town, std::mt19937 &random)
{
    const QStringList &eastWest = demoEastWestStreets();
    const QStringList &northSouth = demoNorthSouthStreets();
    const int street = int(random() % (eastWest.size() + northSouth.size()));
    const bool runsEastWest = street < eastWest.size();
    const QStringList &crossing = runsEastWest ? northSouth : eastWest;
    const int block = int(random() % (crossing.size() - 1));
    DemoAddress address;
    address.number = 1 + int(random() % maximumNumber);
    // Numbers grow eastwards and northwards: the house lies that far along its block.
    const double along = (address.number - 0.5) / maximumNumber;
    address.between = crossing.at(block);
    address.andStreet = crossing.at(block + 1);
    if (runsEastWest) {
        address.street = eastWest.at(street);
        address.latitude = town.latitudeOf(street);
        address.longitude = town.longitudeOf(block) + along * demoBlockLongitude;
    } else {
        address.street = northSouth.at(street - eastWest.size());
        address.longitude = town.longitudeOf(street - eastWest.size());
        address.latitude = town.latitudeOf(block) + along * demoBlockLatitude;
    }
    return address;
}

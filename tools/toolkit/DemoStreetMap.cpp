#include "DemoStreetMap.h"

#include <QSaveFile>
#include <QXmlStreamWriter>

namespace {

using Tags = QList<std::pair<QString, QString>>;

class OsmWriter
{
public:
    explicit OsmWriter(QIODevice *device)
        : m_xml(device)
    {
        m_xml.setAutoFormatting(true);
        m_xml.setAutoFormattingIndent(1);
        m_xml.writeStartDocument();
        m_xml.writeStartElement(QStringLiteral("osm"));
        m_xml.writeAttribute(QStringLiteral("version"), QStringLiteral("0.6"));
        m_xml.writeAttribute(QStringLiteral("generator"), QStringLiteral("velmora-catalogue demo"));
    }

    void bounds(const QRectF &box)
    {
        m_xml.writeEmptyElement(QStringLiteral("bounds"));
        m_xml.writeAttribute(QStringLiteral("minlat"), number(box.top()));
        m_xml.writeAttribute(QStringLiteral("minlon"), number(box.left()));
        m_xml.writeAttribute(QStringLiteral("maxlat"), number(box.bottom()));
        m_xml.writeAttribute(QStringLiteral("maxlon"), number(box.right()));
    }

    // A node at longitude x, latitude y; its id.
    qint64 node(const QPointF &point, const Tags &tags = {})
    {
        const qint64 id = ++m_nodes;
        tags.isEmpty() ? m_xml.writeEmptyElement(QStringLiteral("node")) : m_xml.writeStartElement(QStringLiteral("node"));
        m_xml.writeAttribute(QStringLiteral("id"), QString::number(id));
        m_xml.writeAttribute(QStringLiteral("version"), QStringLiteral("1"));
        m_xml.writeAttribute(QStringLiteral("lat"), number(point.y()));
        m_xml.writeAttribute(QStringLiteral("lon"), number(point.x()));
        if (!tags.isEmpty()) {
            writeTags(tags);
            m_xml.writeEndElement();
        }
        return id;
    }

    void way(const QList<qint64> &nodes, const Tags &tags)
    {
        m_xml.writeStartElement(QStringLiteral("way"));
        m_xml.writeAttribute(QStringLiteral("id"), QString::number(++m_ways));
        m_xml.writeAttribute(QStringLiteral("version"), QStringLiteral("1"));
        for (qint64 id : nodes) {
            m_xml.writeEmptyElement(QStringLiteral("nd"));
            m_xml.writeAttribute(QStringLiteral("ref"), QString::number(id));
        }
        writeTags(tags);
        m_xml.writeEndElement();
    }

    // A closed way around a rectangle (longitude x, latitude y).
    void area(const QRectF &box, const Tags &tags)
    {
        const qint64 first = node(box.topLeft());
        way({first, node(box.topRight()), node(box.bottomRight()), node(box.bottomLeft()), first}, tags);
    }

    void finish()
    {
        m_xml.writeEndElement();
        m_xml.writeEndDocument();
    }

    int nodes() const { return int(m_nodes); }
    int ways() const { return int(m_ways); }

private:
    static QString number(double value) { return QString::number(value, 'f', 7); }

    void writeTags(const Tags &tags)
    {
        for (const auto &[key, value] : tags) {
            m_xml.writeEmptyElement(QStringLiteral("tag"));
            m_xml.writeAttribute(QStringLiteral("k"), key);
            m_xml.writeAttribute(QStringLiteral("v"), value);
        }
    }

    QXmlStreamWriter m_xml;
    qint64 m_nodes = 0;
    qint64 m_ways = 0;
};

QString roadClass(const QString &street)
{
    if (street == QLatin1String("Avenida 5ta"))
        return QStringLiteral("secondary");
    if (street == QLatin1String("Calle 23") || street == QLatin1String("Línea"))
        return QStringLiteral("tertiary");
    return QStringLiteral("residential");
}

Tags street(const QString &name) { return {{QStringLiteral("highway"), roadClass(name)}, {QStringLiteral("name"), name}}; }

void writeTown(OsmWriter &osm, const DemoTown &town)
{
    const QStringList &eastWest = demoEastWestStreets();
    const QStringList &northSouth = demoNorthSouthStreets();
    const QRectF box = town.bounds();
    const bool capital = town.province == 0;
    osm.node(box.center(), {{QStringLiteral("place"), capital ? QStringLiteral("suburb") : QStringLiteral("town")},
                            {QStringLiteral("name"), town.name}});

    // The town's built-up area, as mappers draw one around a town.
    osm.area(box.adjusted(-demoBlockLongitude / 4, -demoBlockLatitude / 4, demoBlockLongitude / 4, demoBlockLatitude / 4),
             {{QStringLiteral("landuse"), QStringLiteral("residential")}});

    // Crossings are shared by the two streets that meet there, as in real data.
    QList<QList<qint64>> crossings(eastWest.size());
    for (int i = 0; i < eastWest.size(); ++i)
        for (int j = 0; j < northSouth.size(); ++j)
            crossings[i].append(osm.node(QPointF(town.longitudeOf(j), town.latitudeOf(i))));
    for (int i = 0; i < eastWest.size(); ++i) {
        QList<qint64> nodes{osm.node(QPointF(box.left(), town.latitudeOf(i)))};
        nodes += crossings[i];
        nodes.append(osm.node(QPointF(box.right(), town.latitudeOf(i))));
        osm.way(nodes, street(eastWest[i]));
    }
    for (int j = 0; j < northSouth.size(); ++j) {
        QList<qint64> nodes{osm.node(QPointF(town.longitudeOf(j), box.top()))};
        for (int i = 0; i < eastWest.size(); ++i)
            nodes.append(crossings[i][j]);
        nodes.append(osm.node(QPointF(town.longitudeOf(j), box.bottom())));
        osm.way(nodes, street(northSouth[j]));
    }

    // Blocks: two buildings each, set back from the streets; one block near the middle is the park.
    const double setBack = 0.00018;
    const int parkRow = eastWest.size() / 2 - 1, parkColumn = northSouth.size() / 2 - 1;
    for (int i = 0; i + 1 < eastWest.size(); ++i) {
        for (int j = 0; j + 1 < northSouth.size(); ++j) {
            const QRectF block(QPointF(town.longitudeOf(j), town.latitudeOf(i)), QPointF(town.longitudeOf(j + 1), town.latitudeOf(i + 1)));
            const QRectF inside = block.adjusted(setBack, setBack, -setBack, -setBack);
            if (i == parkRow && j == parkColumn) {
                osm.area(inside, {{QStringLiteral("leisure"), QStringLiteral("park")}, {QStringLiteral("name"), QStringLiteral("Parque Central")}});
                continue;
            }
            const double middle = inside.center().x();
            const double gap = 0.00004;
            osm.area(QRectF(inside.topLeft(), QPointF(middle - gap, inside.bottom())), {{QStringLiteral("building"), QStringLiteral("yes")}});
            osm.area(QRectF(QPointF(middle + gap, inside.top()), inside.bottomRight()), {{QStringLiteral("building"), QStringLiteral("yes")}});
        }
    }

    // A coastal town gets its promenade and the sea beyond it.
    const double promenade = demoBlockLatitude * 0.6, sea = demoBlockLatitude * 4;
    const Tags malecon{{QStringLiteral("highway"), QStringLiteral("secondary")}, {QStringLiteral("name"), QStringLiteral("Malecón")}};
    const Tags water{{QStringLiteral("natural"), QStringLiteral("water")}, {QStringLiteral("water"), QStringLiteral("sea")}};
    switch (town.waterfront) {
    case Waterfront::North:
        osm.way({osm.node(QPointF(box.left(), box.bottom() + promenade)), osm.node(QPointF(box.right(), box.bottom() + promenade))}, malecon);
        osm.area(QRectF(QPointF(box.left(), box.bottom() + 2 * promenade), QPointF(box.right(), box.bottom() + sea)), water);
        break;
    case Waterfront::South:
        osm.way({osm.node(QPointF(box.left(), box.top() - promenade)), osm.node(QPointF(box.right(), box.top() - promenade))}, malecon);
        osm.area(QRectF(QPointF(box.left(), box.top() - sea), QPointF(box.right(), box.top() - 2 * promenade)), water);
        break;
    case Waterfront::East:
        osm.way({osm.node(QPointF(box.right() + promenade, box.top())), osm.node(QPointF(box.right() + promenade, box.bottom()))}, malecon);
        osm.area(QRectF(QPointF(box.right() + 2 * promenade, box.top()), QPointF(box.right() + sea, box.bottom())), water);
        break;
    case Waterfront::West:
        osm.way({osm.node(QPointF(box.left() - promenade, box.top())), osm.node(QPointF(box.left() - promenade, box.bottom()))}, malecon);
        osm.area(QRectF(QPointF(box.left() - sea, box.top()), QPointF(box.left() - 2 * promenade, box.bottom())), water);
        break;
    case Waterfront::None:
        break;
    }
}

}

bool writeDemoStreetMap(const QList<DemoTown> &towns, const QString &path, DemoStreetMapStats &stats, QString *error)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        *error = QStringLiteral("can't write %1: %2").arg(path, file.errorString());
        return false;
    }
    OsmWriter osm(&file);
    QRectF all;
    for (const DemoTown &town : towns)
        all = all.isNull() ? town.bounds() : all.united(town.bounds());
    osm.bounds(all.adjusted(-0.01, -0.01, 0.01, 0.01));
    for (const DemoTown &town : towns)
        writeTown(osm, town);
    osm.finish();
    stats = {osm.nodes(), osm.ways()};
    if (!file.commit()) {
        *error = QStringLiteral("can't write %1: %2").arg(path, file.errorString());
        return false;
    }
    return true;
}

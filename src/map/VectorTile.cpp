#include "map/VectorTile.h"

#include "platform/Compression.h"

#include <protozero/pbf_reader.hpp>

namespace {

// Field numbers of the vector tile format.
enum : protozero::pbf_tag_type {
    TileLayers = 3,
    LayerVersion = 15, LayerName = 1, LayerFeatures = 2, LayerKeys = 3, LayerValues = 4, LayerExtent = 5,
    FeatureTags = 2, FeatureType = 3, FeatureGeometry = 4,
    ValueString = 1, ValueFloat = 2, ValueDouble = 3, ValueInt = 4, ValueUint = 5, ValueSint = 6, ValueBool = 7,
};
enum : uint32_t { MoveTo = 1, LineTo = 2, ClosePath = 7 };

struct Refusal {
    QString why;
};

QString decodeValue(protozero::pbf_reader value)
{
    QString text;
    while (value.next()) {
        switch (value.tag()) {
        case ValueString: {
            const auto view = value.get_view();
            text = QString::fromUtf8(view.data(), qsizetype(view.size()));
            break;
        }
        case ValueFloat: text = QString::number(value.get_float()); break;
        case ValueDouble: text = QString::number(value.get_double()); break;
        case ValueInt: text = QString::number(value.get_int64()); break;
        case ValueUint: text = QString::number(value.get_uint64()); break;
        case ValueSint: text = QString::number(value.get_sint64()); break;
        case ValueBool: text = value.get_bool() ? QStringLiteral("true") : QStringLiteral("false"); break;
        default: value.skip();
        }
    }
    return text;
}

int32_t zigzag(uint32_t n) { return int32_t((n >> 1) ^ (~(n & 1) + 1)); }

// The command stream: MoveTo and LineTo with their zig-zag pairs, ClosePath alone.
void decodeGeometry(const std::vector<uint32_t> &commands, VectorFeature &feature, qsizetype &pointBudget)
{
    // Far outside any tile's buffer is a damaged stream, and wider sums would overflow.
    constexpr int64_t reach = 1 << 20;
    int64_t x = 0, y = 0;
    QPolygonF part;
    const auto finishPart = [&] {
        if (!part.isEmpty())
            feature.parts.append(part);
        part.clear();
    };
    size_t i = 0;
    while (i < commands.size()) {
        const uint32_t command = commands[i] & 0x7;
        const uint32_t count = commands[i] >> 3;
        ++i;
        if (command == ClosePath) {
            if (count != 1 || part.size() < 3)
                throw Refusal{QStringLiteral("a ring closes before it has three points")};
            part.append(part.first());
            finishPart();
            continue;
        }
        if (command != MoveTo && command != LineTo)
            throw Refusal{QStringLiteral("unknown geometry command %1").arg(command)};
        if (count == 0 || count > (commands.size() - i) / 2)
            throw Refusal{QStringLiteral("a geometry command runs past its data")};
        pointBudget -= qsizetype(count);
        if (pointBudget < 0)
            throw Refusal{QStringLiteral("more points than a tile may hold")};
        for (uint32_t n = 0; n < count; ++n, i += 2) {
            x += zigzag(commands[i]);
            y += zigzag(commands[i + 1]);
            if (x < -reach || x > reach || y < -reach || y > reach)
                throw Refusal{QStringLiteral("a point far outside the tile")};
            if (command == MoveTo && (feature.type != VectorFeature::Type::Point || n == 0))
                finishPart();
            part.append(QPointF(x, y));
            if (feature.type == VectorFeature::Type::Point)
                finishPart();
        }
        if (command == LineTo && part.size() < 2)
            throw Refusal{QStringLiteral("a line without a start")};
    }
    if (feature.type == VectorFeature::Type::Polygon && !part.isEmpty())
        throw Refusal{QStringLiteral("a polygon ring left open")};
    finishPart();
}

VectorLayer decodeLayer(protozero::pbf_reader layer, qsizetype &pointBudget, qsizetype &featureBudget)
{
    VectorLayer result;
    QStringList keys;
    QStringList values;
    // Features refer to keys and values by index, and the format doesn't order the fields, so
    // features are read after the whole layer has been seen.
    std::vector<protozero::pbf_reader> features;
    while (layer.next()) {
        switch (layer.tag()) {
        case LayerName: {
            const auto view = layer.get_view();
            result.name = QString::fromUtf8(view.data(), qsizetype(view.size()));
            break;
        }
        case LayerFeatures:
            if (--featureBudget < 0)
                throw Refusal{QStringLiteral("more features than a tile may hold")};
            features.push_back(layer.get_message());
            break;
        case LayerKeys: {
            const auto view = layer.get_view();
            keys.append(QString::fromUtf8(view.data(), qsizetype(view.size())));
            break;
        }
        case LayerValues: values.append(decodeValue(layer.get_message())); break;
        case LayerExtent: result.extent = int(layer.get_uint32()); break;
        case LayerVersion: layer.skip(); break;
        default: layer.skip();
        }
    }
    if (result.extent <= 0 || result.extent > (1 << 16))
        throw Refusal{QStringLiteral("layer %1 has an extent of %2").arg(result.name).arg(result.extent)};
    result.features.reserve(features.size());
    for (protozero::pbf_reader feature : features) {
        VectorFeature decoded;
        std::vector<uint32_t> tags;
        std::vector<uint32_t> geometry;
        while (feature.next()) {
            switch (feature.tag()) {
            case FeatureTags: {
                const auto range = feature.get_packed_uint32();
                tags.assign(range.begin(), range.end());
                break;
            }
            case FeatureType: {
                const int type = feature.get_enum();
                decoded.type = type >= 1 && type <= 3 ? VectorFeature::Type(type) : VectorFeature::Type::Unknown;
                break;
            }
            case FeatureGeometry: {
                const auto range = feature.get_packed_uint32();
                if (qsizetype(range.size()) > 2 * pointBudget + 16)
                    throw Refusal{QStringLiteral("more points than a tile may hold")};
                geometry.assign(range.begin(), range.end());
                break;
            }
            default: feature.skip();
            }
        }
        if (tags.size() % 2 != 0)
            throw Refusal{QStringLiteral("a feature's attributes are not in pairs")};
        for (size_t t = 0; t < tags.size(); t += 2) {
            if (tags[t] >= uint32_t(keys.size()) || tags[t + 1] >= uint32_t(values.size()))
                throw Refusal{QStringLiteral("an attribute index out of range in layer %1").arg(result.name)};
            decoded.attributes.append({keys.at(tags[t]), values.at(tags[t + 1])});
        }
        if (decoded.type == VectorFeature::Type::Unknown)
            continue; // the format allows them; there is nothing to draw
        decodeGeometry(geometry, decoded, pointBudget);
        result.features.push_back(std::move(decoded));
    }
    return result;
}

}

QString VectorFeature::attribute(QLatin1StringView key) const
{
    for (const auto &[name, value] : attributes)
        if (name == key)
            return value;
    return {};
}

const VectorLayer *VectorTile::layer(QLatin1StringView name) const
{
    for (const VectorLayer &layer : layers)
        if (layer.name == name)
            return &layer;
    return nullptr;
}

bool decodeVectorTile(const QByteArray &data, VectorTile &tile, QString *error, const VectorTileLimits &limits)
{
    tile.layers.clear();
    QByteArray bytes = data;
    if (data.startsWith("\x1f\x8b")) {
        if (!Compression::decompress(data, Compression::Format::Gzip, limits.maxInflatedBytes, bytes)) {
            *error = QStringLiteral("damaged gzip, or it inflates past %1 bytes").arg(limits.maxInflatedBytes);
            return false;
        }
    }
    qsizetype pointBudget = limits.maxPoints;
    qsizetype featureBudget = limits.maxFeatures;
    try {
        protozero::pbf_reader reader(bytes.constData(), size_t(bytes.size()));
        while (reader.next()) {
            if (reader.tag() == TileLayers)
                tile.layers.push_back(decodeLayer(reader.get_message(), pointBudget, featureBudget));
            else
                reader.skip();
        }
    } catch (const Refusal &refusal) {
        *error = refusal.why;
        tile.layers.clear();
        return false;
    } catch (const protozero::exception &exception) {
        *error = QStringLiteral("not a vector tile: %1").arg(QString::fromLatin1(exception.what()));
        tile.layers.clear();
        return false;
    }
    return true;
}

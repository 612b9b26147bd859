#include "SourceReader.h"

#include "CatalogueSchema.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace {

class Reader
{
public:
    Reader(const QString &jsonPath, CatalogueData &data)
        : m_base(QFileInfo(jsonPath).absoluteDir())
        , m_data(data)
    {
    }

    QString error;

    // Copies the object's fields that are columns of `table` into a row; other fields must be
    // among `nested`, which the caller reads itself.
    bool row(const QJsonObject &object, const QString &table, const QStringList &nested, QVariantMap &into,
             const QString &record)
    {
        const CatalogueSchema::Table *schema = CatalogueSchema::table(table);
        for (auto it = object.begin(); it != object.end(); ++it) {
            const qsizetype column = schema->columns.indexOf(it.key());
            if (column < 0) {
                if (nested.contains(it.key()))
                    continue;
                return fail(QStringLiteral("%1: unknown field \"%2\"").arg(record, it.key()));
            }
            into.insert(it.key(), value(it.value(), schema->types.at(column)));
        }
        return true;
    }

    bool picture(const QJsonValue &path, QVariantMap &into, const QString &column, const QString &record)
    {
        if (path.isUndefined() || path.isNull())
            return true;
        QFile file(m_base.filePath(path.toString()));
        if (path.toString().isEmpty() || !file.open(QIODevice::ReadOnly))
            return fail(QStringLiteral("%1: picture \"%2\" not found").arg(record, path.toString()));
        into.insert(column, file.readAll());
        return true;
    }

    bool table(const QJsonObject &source, const QString &table, const QStringList &nested = {},
               const std::function<bool(const QJsonObject &, QVariantMap &, const QString &)> &more = {})
    {
        const QJsonValue value = source.value(table);
        if (value.isUndefined())
            return true;
        if (!value.isArray())
            return fail(table + QStringLiteral(": must be a list"));
        for (const QJsonValue &element : value.toArray()) {
            const QJsonObject object = element.toObject();
            const QString record = QStringLiteral("%1 id=%2").arg(table, object.value(QStringLiteral("id")).toVariant().toString());
            QVariantMap row;
            if (!element.isObject())
                return fail(table + QStringLiteral(": every entry must be an object"));
            if (!this->row(object, table, nested, row, record) || (more && !more(object, row, record)))
                return false;
            m_data.rows(table).append(row);
        }
        return true;
    }

    // Adds one row per id of a list field, linking the place to another table.
    bool links(const QJsonObject &place, int placeId, const QString &field, const QString &table, const QString &column,
               const QString &record)
    {
        for (const QJsonValue &id : place.value(field).toArray()) {
            if (!id.isDouble())
                return fail(QStringLiteral("%1: \"%2\" must list ids").arg(record, field));
            m_data.rows(table).append({{QStringLiteral("restaurant_id"), placeId}, {column, id.toInt()}});
        }
        return true;
    }

    bool place(const QJsonObject &object, QVariantMap &row, const QString &record)
    {
        const int id = object.value(QStringLiteral("id")).toInt();
        row.insert(QStringLiteral("search_name"), searchName(row.value(QStringLiteral("name")).toString()));
        if (!links(object, id, QStringLiteral("cuisines"), QStringLiteral("restaurants_cuisines"), QStringLiteral("cuisine_id"), record)
            || !links(object, id, QStringLiteral("service_types"), QStringLiteral("restaurants_service_types"),
                      QStringLiteral("service_type_id"), record)
            || !links(object, id, QStringLiteral("payment_types"), QStringLiteral("restaurants_payment_types"),
                      QStringLiteral("payment_type_id"), record)
            || !links(object, id, QStringLiteral("place_options"), QStringLiteral("restaurants_place_options"),
                      QStringLiteral("place_option_id"), record))
            return false;
        if (object.contains(QStringLiteral("profile"))) {
            QVariantMap profile{{QStringLiteral("restaurant_id"), id}};
            if (!picture(object.value(QStringLiteral("profile")), profile, QStringLiteral("data"), record))
                return false;
            m_data.rows(QStringLiteral("restaurants_profiles")).append(profile);
        }
        const QJsonArray gallery = object.value(QStringLiteral("gallery")).toArray();
        for (const QJsonValue &element : gallery) {
            QVariantMap picture{{QStringLiteral("restaurant_id"), id}};
            const QJsonObject entry = element.toObject();
            if (!this->row(entry, QStringLiteral("gallery"), {QStringLiteral("picture")}, picture, record + QStringLiteral(" gallery"))
                || !this->picture(entry.value(QStringLiteral("picture")), picture, QStringLiteral("data"), record))
                return false;
            m_data.rows(QStringLiteral("gallery")).append(picture);
        }
        for (const QJsonValue &element : object.value(QStringLiteral("offers")).toArray()) {
            QVariantMap offer{{QStringLiteral("restaurant_id"), id}};
            if (!this->row(element.toObject(), QStringLiteral("offers"), {}, offer, record + QStringLiteral(" offer")))
                return false;
            m_data.rows(QStringLiteral("offers")).append(offer);
        }
        const QJsonObject menu = object.value(QStringLiteral("menu")).toObject();
        if (!menu.isEmpty()) {
            QVariantMap head{{QStringLiteral("restaurant_id"), id}};
            if (!this->row(menu, QStringLiteral("menu"), {QStringLiteral("entries")}, head, record + QStringLiteral(" menu")))
                return false;
            m_data.rows(QStringLiteral("menu")).append(head);
            for (const QJsonValue &element : menu.value(QStringLiteral("entries")).toArray()) {
                QVariantMap entry{{QStringLiteral("menu_id"), head.value(QStringLiteral("id"))}};
                if (!this->row(element.toObject(), QStringLiteral("menu_entries"), {}, entry, record + QStringLiteral(" menu entry")))
                    return false;
                m_data.rows(QStringLiteral("menu_entries")).append(entry);
            }
        }
        if (!row.contains(QStringLiteral("has_menu")))
            row.insert(QStringLiteral("has_menu"), menu.isEmpty() ? 0 : 1);
        if (!row.contains(QStringLiteral("has_gallery")))
            row.insert(QStringLiteral("has_gallery"), gallery.isEmpty() ? 0 : 1);
        return true;
    }

    bool campaign(const QJsonObject &object, QVariantMap &, const QString &record)
    {
        for (const QJsonValue &element : object.value(QStringLiteral("pictures")).toArray()) {
            const QJsonObject entry = element.toObject();
            QVariantMap image{{QStringLiteral("campaign_id"), object.value(QStringLiteral("id")).toInt()}};
            if (!row(entry, QStringLiteral("app_campaign_images"), {QStringLiteral("picture")}, image, record + QStringLiteral(" picture"))
                || !picture(entry.value(QStringLiteral("picture")), image, QStringLiteral("data"), record))
                return false;
            m_data.rows(QStringLiteral("app_campaign_images")).append(image);
        }
        return true;
    }

private:
    bool fail(const QString &message)
    {
        error = message;
        return false;
    }

    static QVariant value(const QJsonValue &json, const QString &type)
    {
        if (json.isNull() || json.isUndefined())
            return QVariant();
        if (json.isBool())
            return json.toBool() ? 1 : 0;
        if (type.startsWith(QLatin1String("INTEGER")) && json.isDouble() && std::trunc(json.toDouble()) == json.toDouble())
            return qlonglong(json.toDouble());
        if (type == QLatin1String("TEXT") && json.isDouble())
            return json.toVariant().toString();
        return json.toVariant();
    }

    QDir m_base;
    CatalogueData &m_data;
};

}

bool readSource(const QString &jsonPath, CatalogueData &data, QString *error)
{
    QFile file(jsonPath);
    if (!file.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("can't read %1").arg(jsonPath);
        return false;
    }
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &parseError);
    if (!document.isObject()) {
        *error = QStringLiteral("%1: not a JSON object (%2 at byte %3)").arg(jsonPath, parseError.errorString()).arg(parseError.offset);
        return false;
    }
    const QJsonObject source = document.object();
    const QJsonObject extras = source.value(QStringLiteral("extras")).toObject();
    for (auto it = extras.begin(); it != extras.end(); ++it)
        data.setExtra(it.key(), it.value().toVariant().toString());

    Reader reader(jsonPath, data);
    using namespace std::placeholders;
    const bool read = reader.table(source, QStringLiteral("states")) && reader.table(source, QStringLiteral("counties"))
        && reader.table(source, QStringLiteral("price_ranks")) && reader.table(source, QStringLiteral("cuisines"))
        && reader.table(source, QStringLiteral("restaurant_groups")) && reader.table(source, QStringLiteral("service_types"))
        && reader.table(source, QStringLiteral("place_options")) && reader.table(source, QStringLiteral("payment_options"))
        && reader.table(source, QStringLiteral("restaurants"),
                        {QStringLiteral("cuisines"), QStringLiteral("service_types"), QStringLiteral("payment_types"),
                         QStringLiteral("place_options"), QStringLiteral("profile"), QStringLiteral("gallery"),
                         QStringLiteral("offers"), QStringLiteral("menu")},
                        std::bind(&Reader::place, &reader, _1, _2, _3))
        && reader.table(source, QStringLiteral("restaurants_promoted"), {QStringLiteral("picture")},
                        [&](const QJsonObject &object, QVariantMap &row, const QString &record) {
                            return reader.picture(object.value(QStringLiteral("picture")), row, QStringLiteral("data"), record);
                        })
        && reader.table(source, QStringLiteral("app_campaigns"), {QStringLiteral("pictures")},
                        std::bind(&Reader::campaign, &reader, _1, _2, _3));
    if (!read) {
        *error = reader.error;
        return false;
    }
    *error = validate(data);
    return error->isEmpty();
}

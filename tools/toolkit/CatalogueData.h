#pragma once

#include <QList>
#include <QMap>
#include <QString>
#include <QVariantMap>

// A whole catalogue in memory, table by table; a row maps column names to values (QByteArray
// for pictures). Columns left out are written as NULL.
struct CatalogueData {
    QMap<QString, QList<QVariantMap>> tables;

    QList<QVariantMap> &rows(const QString &table) { return tables[table]; }
    QList<QVariantMap> rows(const QString &table) const { return tables.value(table); }
    void setExtra(const QString &key, const QString &value);
    QString extra(const QString &key) const;
};

// The sort and index form of a place name: lower case without accents, so "Ñico" files under N.
QString searchName(const QString &name);

// The first rule of the format the data breaks, naming the record; empty when it is sound.
QString validate(const CatalogueData &data);

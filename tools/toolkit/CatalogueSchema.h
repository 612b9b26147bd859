#pragma once

#include <QList>
#include <QString>
#include <QStringList>

// The catalogue format as its producer writes it: every table, its columns in order, how a
// patch tells its rows apart, and the indexes the app's look-ups want.
namespace CatalogueSchema {

struct Table {
    QString name;
    QStringList columns;
    QStringList types;    // SQL type of each column
    QString identity;     // a patch matches rows by this column: "id", or a group key whose rows
                          // are replaced together ("restaurant_id", "menu_id", "key")
    bool optional = false; // the app copes without it
};

// In writing order. `updates` is not among them: it lives only in patch files.
const QList<Table> &tables();
const Table *table(const QString &name);
QString createStatement(const Table &table);
// CREATE INDEX statements, each with the table it belongs to.
QList<std::pair<QString, QString>> indexStatements();

}

#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QString>

// What `info` and `query` report. Queries run the app's own catalogue code on a temporary copy,
// so the file itself is never touched.
QJsonObject catalogueInfo(const QString &path, QString *error);

struct ListQuery {
    int province = 0;
    QString text;
    QList<int> municipalities;
    QList<int> cuisines;
    QList<int> prices;
    bool showClosed = false;
};

// The ids `searchIds` finds, sorted.
bool querySearch(const QString &path, const QString &text, QJsonArray &ids, QString *error);
// The search screen's list for a province: [{"id", "letter"}] in order.
bool queryList(const QString &path, const ListQuery &query, QJsonArray &entries, QString *error);
// A place card's record.
bool queryPlace(const QString &path, int id, QJsonObject &place, QString *error);

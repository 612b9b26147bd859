#pragma once

#include <QList>
#include <QMap>
#include <QString>

// A hit's parameters: names beginning with "&" go on the wire; others ("useSecure") steer it.
using HitParameters = QMap<QString, QString>;

// One hit as the store keeps it until the service has answered.
struct Hit {
    qint64 id = 0;            // the store's row, for deletion
    HitParameters parameters;
    qint64 timestamp = -1;    // milliseconds since 1970; -1 when unknown

    bool hasTimestamp() const { return timestamp >= 0; }
};

using HitList = QList<Hit>;

#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

// Lays out a static tree any web server can serve:
//   DIR/ios/last.txt                          "<new date>|<base URL>/ios/velmora-<new date>.db"
//   DIR/ios/velmora-<new date>.db             the catalogue
//   DIR/ios/u2/update-<old>-<new>.zip         one patch archive for each older catalogue given
// With a secret key, each of them gets its signature beside it (FILE.sig), last.txt's last.
bool publish(const QString &newPath, const QStringList &oldPaths, const QString &directory, const QString &baseUrl,
             QJsonObject &report, QString *error, const QByteArray &secretKey = {});

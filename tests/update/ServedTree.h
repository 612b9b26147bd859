#pragma once

#include "toolkit/UpdateServer.h"

#include <QDir>
#include <QFile>
#include <QHostAddress>
#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>

// The toolkit's server on a free port of 127.0.0.1, serving a tree whose ios/last.txt says
// `announcement`.
struct ServedTree {
    explicit ServedTree(const QByteArray &announcement)
    {
        QDir(dir.path()).mkpath(QStringLiteral("ios"));
        QFile file(dir.filePath(QStringLiteral("ios/last.txt")));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(announcement);
        file.close();
        QString error;
        port = server.listen(QHostAddress::LocalHost, 0, &error);
        EXPECT_NE(port, 0) << error.toStdString();
    }
    QUrl url() const { return QUrl(QStringLiteral("http://127.0.0.1:%1/ios/last.txt").arg(port)); }

    QTemporaryDir dir;
    UpdateServer server{dir.path()};
    quint16 port = 0;
};

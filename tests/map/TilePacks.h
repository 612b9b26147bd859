#pragma once

#include "platform/Database.h"

#include <QBuffer>
#include <QColor>
#include <QFile>
#include <QImage>

#include <gtest/gtest.h>

#include <tuple>

// Tile packs by hand, for the map's tests.

inline QByteArray png(const QColor &color)
{
    QImage image(256, 256, QImage::Format_RGB32);
    image.fill(color);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

// An MBTiles file: `tiles` rows (zoom, column, TMS row, bytes), its bounds and its format.
inline QString writePack(const QString &path, const QList<std::tuple<int, int, int, QByteArray>> &tiles,
                         const QString &bounds = QStringLiteral("-88,13.5,-70,30"), const QString &format = QStringLiteral("png"))
{
    QFile::remove(path);
    Database database(path);
    EXPECT_TRUE(database.open());
    EXPECT_TRUE(database.executeStatements(QStringLiteral("CREATE TABLE metadata (name TEXT, value TEXT);"
                                                          "CREATE TABLE tiles (zoom_level INTEGER, tile_column INTEGER, tile_row INTEGER,"
                                                          " tile_data BLOB);")));
    database.executeUpdate(QStringLiteral("INSERT INTO metadata VALUES ('format', ?), ('bounds', ?)"), {format, bounds});
    for (const auto &[zoom, column, row, data] : tiles)
        database.executeUpdate(QStringLiteral("INSERT INTO tiles VALUES (?, ?, ?, ?)"), {zoom, column, row, data});
    return path;
}

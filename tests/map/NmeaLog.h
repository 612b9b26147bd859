#pragma once

#include <QByteArray>
#include <QFile>
#include <QList>
#include <QTime>

#include <cmath>

// A recorded drive as a GPS writes it: one RMC sentence a second, with its checksum.
namespace NmeaLog {

inline QByteArray sentence(const QByteArray &body)
{
    quint8 sum = 0;
    for (char c : body)
        sum ^= quint8(c);
    return '$' + body + '*' + QByteArray::number(sum, 16).rightJustified(2, '0').toUpper() + "\r\n";
}

inline QByteArray rmc(const QTime &time, double latitude, double longitude)
{
    const auto part = [](double value, int degreeDigits) {
        const double magnitude = std::abs(value);
        const int degrees = int(magnitude);
        return QByteArray::number(degrees).rightJustified(degreeDigits, '0')
               + QByteArray::number((magnitude - degrees) * 60.0, 'f', 4).rightJustified(7, '0');
    };
    return sentence("GPRMC," + time.toString(QStringLiteral("hhmmss.zzz")).left(9).toLatin1() + ",A," + part(latitude, 2) + ','
                    + (latitude < 0 ? "S" : "N") + ',' + part(longitude, 3) + ',' + (longitude < 0 ? "W" : "E")
                    + ",0.0,0.0,241126,,,A");
}

inline void write(const QString &path, const QList<QByteArray> &lines)
{
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    for (const QByteArray &line : lines)
        file.write(line);
}

}

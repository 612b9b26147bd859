#pragma once

#include <QElapsedTimer>
#include <QList>
#include <QObject>

class QAccelerometer;

// Tells when the device is shaken, from its accelerometer (Qt Sensors): three jolts well above
// gravity within 0.6 s make a shake, and shakes come at most once a second. A device without an
// accelerometer (a desktop) never shakes; the app offers a shortcut instead.
class ShakeDetector : public QObject
{
    Q_OBJECT

public:
    explicit ShakeDetector(QObject *parent = nullptr);
    bool hasSensor() const { return m_sensor != nullptr; }

    // One reading in m/s^2; exposed so the rule can be tested without a sensor.
    void reading(double x, double y, double z, qint64 milliseconds);

signals:
    void shaken();

private:
    QAccelerometer *m_sensor = nullptr;
    QList<qint64> m_jolts;
    qint64 m_lastShake = -1000000;
    QElapsedTimer m_clock;
};

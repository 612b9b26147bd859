#include "platform/ShakeDetector.h"

#include <QAccelerometer>
#include <QSensor>

#include <cmath>

namespace {
constexpr double joltMetresPerSecond2 = 2.2 * 9.81;
constexpr qint64 joltWindowMs = 600;
constexpr int joltsPerShake = 3;
constexpr qint64 quietAfterShakeMs = 1000;
}

ShakeDetector::ShakeDetector(QObject *parent)
    : QObject(parent)
{
    m_clock.start();
    if (QSensor::sensorsForType(QAccelerometer::sensorType).isEmpty())
        return;
    m_sensor = new QAccelerometer(this);
    connect(m_sensor, &QSensor::readingChanged, this, [this] {
        if (const QAccelerometerReading *value = m_sensor->reading())
            reading(value->x(), value->y(), value->z(), m_clock.elapsed());
    });
    if (!m_sensor->start()) {
        delete m_sensor;
        m_sensor = nullptr;
    }
}

void ShakeDetector::reading(double x, double y, double z, qint64 milliseconds)
{
    if (std::sqrt(x * x + y * y + z * z) < joltMetresPerSecond2)
        return;
    m_jolts.append(milliseconds);
    while (!m_jolts.isEmpty() && milliseconds - m_jolts.first() > joltWindowMs)
        m_jolts.removeFirst();
    if (m_jolts.size() >= joltsPerShake && milliseconds - m_lastShake >= quietAfterShakeMs) {
        m_jolts.clear();
        m_lastShake = milliseconds;
        emit shaken();
    }
}

#include "platform/Shuffle.h"

#include <QMutex>
#include <mutex>
#include <QRandomGenerator>

namespace {
std::mutex generatorMutex;
QRandomGenerator &generator()
{
    static QRandomGenerator instance = QRandomGenerator::securelySeeded();
    return instance;
}
}

quint32 RandomSource::uniform(quint32 upperBound)
{
    if (upperBound == 0)
        return 0;
    QMutexLocker lock(&generatorMutex);
    return generator().bounded(upperBound);
}

void RandomSource::seed(std::optional<quint32> value)
{
    QMutexLocker lock(&generatorMutex);
    generator() = value ? QRandomGenerator(*value) : QRandomGenerator::securelySeeded();
}

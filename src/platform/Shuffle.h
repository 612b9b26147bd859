#pragma once

#include <QList>
#include <QtGlobal>

#include <optional>

// The random source behind every shuffle of the app: securely seeded, or seeded by a test that
// wants a repeatable order. Safe to use from any thread.
namespace RandomSource {
// A uniform integer in [0, upperBound); 0 when upperBound is 0.
quint32 uniform(quint32 upperBound);
// A fixed seed, or none to go back to a secure one.
void seed(std::optional<quint32> value);
}

// The in-place Fisher-Yates walk: for i from 0 to n-2, j = i + uniform(n-i), swap when j != i.
// Lists of fewer than two entries stay as they are.
template <typename T>
void shuffle(QList<T> &list)
{
    for (qsizetype i = 0; i + 1 < list.size(); ++i) {
        const qsizetype j = i + qsizetype(RandomSource::uniform(quint32(list.size() - i)));
        if (j != i)
            list.swapItemsAt(i, j);
    }
}

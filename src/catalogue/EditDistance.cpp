#include "catalogue/EditDistance.h"

#include <QList>

#include <algorithm>
#include <vector>

int editDistance(const QString &a, const QString &b)
{
    const QList<uint> left = a.toUcs4();
    const QList<uint> right = b.toUcs4();
    // Two rows of the full matrix are enough: each cell reads only its row and the one above.
    std::vector<int> above(right.size() + 1);
    std::vector<int> row(right.size() + 1);
    for (qsizetype j = 0; j <= right.size(); ++j)
        above[j] = int(j);
    for (qsizetype i = 1; i <= left.size(); ++i) {
        row[0] = int(i);
        for (qsizetype j = 1; j <= right.size(); ++j)
            row[j] = left[i - 1] == right[j - 1] ? above[j - 1]
                                                 : std::min({row[j - 1] + 1, above[j] + 1, above[j - 1] + 2});
        std::swap(above, row);
    }
    return above[right.size()];
}

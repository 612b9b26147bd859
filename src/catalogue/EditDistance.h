#pragma once

#include <QString>

// Levenshtein distance over Unicode scalar values in which a substitution costs 2, as much as a
// deletion and an insertion. An empty side costs the other's length.
int editDistance(const QString &a, const QString &b);

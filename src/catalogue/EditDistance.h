#pragma once

#include <QList>
#include <QString>

#include <utility>

// Levenshtein distance over Unicode scalar values in which a substitution costs 2, as much as a
// deletion and an insertion. An empty side costs the other's length.
int editDistance(const QString &a, const QString &b);

// editDistance(text, name) for one text against many names. With these weights the distance is
// the two lengths less twice their longest common subsequence, which a bit-parallel pass finds
// in one step per character of the name when the text has at most 64 characters.
class EditDistanceFrom
{
public:
    explicit EditDistanceFrom(const QString &text);
    int to(const QString &name) const;

private:
    QString m_text;
    bool m_bitParallel = false;
    QList<std::pair<char16_t, quint64>> m_masks; // per distinct character of the text, where it stands
};

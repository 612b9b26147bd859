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
    int to(QStringView name) const;
    // to() for four names at once: their steps interleave, so the processor runs four at the
    // pace of one.
    void toFour(const QStringView (&names)[4], int (&distances)[4]) const;

private:
    quint64 maskOf(char16_t c) const;

    QString m_text;
    bool m_bitParallel = false;
    quint64 m_latin1[256] = {};                  // where each Latin-1 character stands in the text
    QList<std::pair<char16_t, quint64>> m_masks; // the same for the text's other characters
};

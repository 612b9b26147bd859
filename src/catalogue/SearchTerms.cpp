#include "catalogue/SearchTerms.h"

#include <QRegularExpression>
#include <QSet>
#include <QStringList>
#include <QTextBoundaryFinder>

QString searchTerms(const QString &name, const QString &address)
{
    static const QRegularExpression blanks(QStringLiteral("\\s+"));
    QSet<QString> suffixes;
    for (const QString &word : name.split(blanks, Qt::SkipEmptyParts)) {
        // Suffixes start at each user-perceived character, so "é" written as e and a combining
        // accent is never cut in two.
        QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, word);
        for (qsizetype start = 0; start >= 0 && start < word.size(); start = characters.toNextBoundary())
            suffixes.insert(word.mid(start));
    }
    QStringList terms(suffixes.begin(), suffixes.end());
    terms.append(address);
    return terms.join(QLatin1Char(' '));
}

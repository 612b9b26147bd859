#include "catalogue/SearchTerms.h"

#include <QRegularExpression>
#include <QSet>
#include <QTextBoundaryFinder>

QStringList indexedNameWords(const QString &name)
{
    static const QRegularExpression blanks(QStringLiteral("\\s+"));
    QStringList words = name.left(maxIndexedNameLength).split(blanks, Qt::SkipEmptyParts);
    for (QString &word : words) {
        // Cut at a character boundary, never inside a surrogate pair.
        qsizetype length = std::min(word.size(), maxIndexedWordLength);
        if (length < word.size() && word.at(length).isLowSurrogate())
            --length;
        word.truncate(length);
    }
    return words;
}

QString searchTerms(const QString &name, const QString &address)
{
    QSet<QString> suffixes;
    for (const QString &word : indexedNameWords(name)) {
        // Suffixes start at each user-perceived character, so "é" written as e and a combining
        // accent is never cut in two.
        QTextBoundaryFinder characters(QTextBoundaryFinder::Grapheme, word);
        for (qsizetype start = 0; start >= 0 && start < word.size(); start = characters.toNextBoundary())
            suffixes.insert(word.mid(start));
    }
    QStringList terms(suffixes.begin(), suffixes.end());
    terms.append(address.left(maxIndexedAddressLength));
    return terms.join(QLatin1Char(' '));
}

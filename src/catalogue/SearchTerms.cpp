#include "catalogue/SearchTerms.h"

#include <QSet>
#include <QTextBoundaryFinder>

QStringList wordsOf(QStringView text)
{
    QStringList words;
    qsizetype start = -1;
    for (qsizetype i = 0; i <= text.size(); ++i) {
        const bool blank = i == text.size() || text.at(i).isSpace();
        if (!blank && start < 0)
            start = i;
        else if (blank && start >= 0) {
            words.append(text.mid(start, i - start).toString());
            start = -1;
        }
    }
    return words;
}

QStringList indexedNameWords(const QString &name)
{
    QStringList words = wordsOf(QStringView(name).left(maxIndexedNameLength));
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

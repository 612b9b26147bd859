#pragma once

#include <QString>
#include <QStringList>

// What the search index holds for one place: every suffix of every word of the name, once each,
// then the address as it stands. A prefix query on a suffix then finds a fragment anywhere
// inside a word of the name ("degu*" finds "Bodeguita"), while an address matches only from the
// start of a word. Case and accents are left to the index's tokenizer.
QString searchTerms(const QString &name, const QString &address);

// The suffixes of a word grow with the square of its length, so only so much of a name is
// expanded: its words up to this many characters, and of each word its start. A name made of
// one 10 MB word would otherwise stall the index build for minutes.
constexpr qsizetype maxIndexedNameLength = 1000;
constexpr qsizetype maxIndexedWordLength = 64;
constexpr qsizetype maxIndexedAddressLength = 1000;

// What the index's tokenizer keeps in a word: letters and digits. Anything else ends a word.
inline bool isTokenCharacter(QChar c)
{
    return c.isLetterOrNumber();
}

// `text` split at whitespace and newlines, empty pieces dropped. No regular expression: the
// index build and the listing run on threads that may outlive the process's static objects.
QStringList wordsOf(QStringView text);

// The words of a name as the index expands them, after those limits.
QStringList indexedNameWords(const QString &name);

#include "browse/Sections.h"

QList<Section> groupIntoSections(const QList<SortedEntry> &entries)
{
    static const QString digits = QStringLiteral("0123456789");
    QList<Section> sections;
    QString previous;
    const QChar *previousLetter = nullptr; // the letter of the last entry, as stored
    qsizetype previousSize = 0;
    for (const SortedEntry &entry : entries) {
        // The entries of a listing share their section's letter: the same text as the last
        // entry's joins its section without being looked at again.
        if (!sections.isEmpty() && previousLetter && entry.letter.constData() == previousLetter
            && entry.letter.size() == previousSize) {
            sections.last().ids.append(entry.id);
            continue;
        }
        previousLetter = entry.letter.isEmpty() ? nullptr : entry.letter.constData();
        previousSize = entry.letter.size();
        // A place without a letter starts no section: it joins the last one, or has none to join.
        if (entry.letter.isEmpty()) {
            if (!sections.isEmpty())
                sections.last().ids.append(entry.id);
            continue;
        }
        const QString key = digits.contains(entry.letter) ? QStringLiteral("#") : entry.letter;
        // Canonically equivalent letters (a precomposed and a decomposed Ñ) share a section.
        // Equal text needs no normalising, and that is nearly every row.
        if (key != previous && key.normalized(QString::NormalizationForm_C) != previous.normalized(QString::NormalizationForm_C)) {
            sections.append(Section{key, {}});
            previous = key;
        }
        sections.last().ids.append(entry.id);
    }
    return sections;
}

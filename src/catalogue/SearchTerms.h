#pragma once

#include <QString>

// What the search index holds for one place: every suffix of every word of the name, once each,
// then the address as it stands. A prefix query on a suffix then finds a fragment anywhere
// inside a word of the name ("degu*" finds "Bodeguita"), while an address matches only from the
// start of a word. Case and accents are left to the index's tokenizer.
QString searchTerms(const QString &name, const QString &address);

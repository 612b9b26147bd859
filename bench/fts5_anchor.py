#!/usr/bin/env python3
"""SQLite's own FTS5 trigram index doing the app's keystroke, as a yardstick.

    fts5_anchor.py EXPORT [repetitions]

EXPORT is what `keystroke_bench --export` wrote: every place's folded name and address, whether
it passes the capital's filters and its place in the list, then each prefix the app typed with
its times and the places it listed. This builds an FTS5 trigram index over the same text (in
this process's own SQLite, never the app's), then runs each prefix whose words all have three
letters or more (trigrams can't look up fewer) as the app does: a word is found inside a word of
the name or at the start of a word of the address, every word must be found, only the places
passing the filters are kept, in list order. It checks that both find the same places, and
prints one row: the app's letter-pair index build and FTS5's inserts, and the keystroke's median
and p99 on each side.
"""
import sqlite3
import statistics
import sys
import time
import unicodedata

# Marks the start of each address word, so that a trigram phrase beginning with it can only
# match there.
WORD_START = "\u2063"


def percentile(values, p):
    ordered = sorted(values)
    return ordered[min(len(ordered) - 1, int(p * (len(ordered) - 1) + 0.5))]


def words_of(text):
    """The folded words of typed text, as the app splits them: runs of letters and digits."""
    words, word = [], ""
    decomposed = unicodedata.normalize("NFD", text)
    for c in "".join(c for c in decomposed if unicodedata.category(c) != "Mn").casefold():
        if c.isalnum():
            word += c
        elif word:
            words.append(word)
            word = ""
    if word:
        words.append(word)
    return words


def mark_word_starts(text):
    """The text with WORD_START before each run of letters and digits, where the app's words
    start (after a space, a sign or nothing)."""
    marked, previous = [], False
    for c in text:
        word = c.isalnum()
        if word and not previous:
            marked.append(WORD_START)
        marked.append(c)
        previous = word
    return "".join(marked)


def main():
    if len(sys.argv) < 2 or sys.argv[1] in ("-h", "--help"):
        print(__doc__.strip())
        return 0 if len(sys.argv) > 1 else 2
    if any(a.startswith("-") for a in sys.argv[1:]):
        print("fts5_anchor.py: unknown option; see --help", file=sys.stderr)
        return 2
    repetitions = int(sys.argv[2]) if len(sys.argv) > 2 else 3
    places, prefixes, pairs_build_ms = [], [], 0.0
    with open(sys.argv[1], encoding="utf-8") as export:
        for line in export:
            fields = line.rstrip("\n").split("\t")
            if fields[0] == "P":
                places.append((int(fields[1]), fields[2], fields[3], int(fields[4]), int(fields[5])))
            elif fields[0] == "B":
                pairs_build_ms = float(fields[1])
            elif fields[0] == "Q":
                times = [float(t) for t in fields[2].split(",") if t]
                listed = [int(i) for i in fields[3].split(",") if i]
                prefixes.append((fields[1], times, listed))

    db = sqlite3.connect(":memory:")
    db.execute("CREATE TABLE places(id INTEGER PRIMARY KEY, passing INTEGER, rank INTEGER)")
    db.execute("CREATE VIRTUAL TABLE fts USING fts5(name, address, tokenize='trigram')")
    rows = [(i, name, mark_word_starts(address)) for i, name, address, _, _ in places]
    start = time.perf_counter()
    with db:
        db.executemany("INSERT INTO fts(rowid, name, address) VALUES(?, ?, ?)", rows)
    build_ms = (time.perf_counter() - start) * 1000
    with db:
        db.executemany("INSERT INTO places VALUES(?, ?, ?)", [(i, passing, rank) for i, _, _, passing, rank in places])

    query = ("SELECT p.id FROM fts JOIN places p ON p.id = fts.rowid"
             " WHERE fts MATCH ? AND p.passing = 1 ORDER BY p.rank")
    anchor, app, disagree, compared = [], [], [], 0
    for text, app_times, app_listed in prefixes:
        words = words_of(text)
        # Trigrams find nothing shorter than three letters.
        if not words or any(len(w) < 3 for w in words):
            continue
        match = " AND ".join('(name : "%s" OR address : "%s%s")' % (w, WORD_START, w) for w in words)
        found = None
        for _ in range(repetitions):
            start = time.perf_counter()
            found = [row[0] for row in db.execute(query, (match,))]
            anchor.append((time.perf_counter() - start) * 1000)
        app.extend(app_times)
        compared += 1
        if set(found) != set(app_listed):
            disagree.append("%s: FTS5 %d places, app %d" % (text, len(set(found)), len(set(app_listed))))

    for line in disagree:
        print("DIFFERENT " + line, file=sys.stderr)
    a_med, a_p99 = statistics.median(anchor), percentile(anchor, 0.99)
    m_med, m_p99 = statistics.median(app), percentile(app, 0.99)
    print("| %8d | %10.0f | %10.0f | %6.1fx | %8d | %8.2f | %7.2f | %8.2f | %7.2f | %7.1fx | %7.1fx | %s |" % (
        len(places), pairs_build_ms, build_ms, build_ms / pairs_build_ms if pairs_build_ms else 0, compared, a_med, a_p99, m_med, m_p99, a_med / m_med if m_med else 0,
        a_p99 / m_p99 if m_p99 else 0, "same places" if not disagree else "%d differ" % len(disagree)))
    return 1 if disagree else 0


if __name__ == "__main__":
    sys.exit(main())

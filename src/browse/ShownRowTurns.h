#pragma once

#include <QObject>
#include <QTimer>

#include <functional>
#include <set>

// Changes to the rows a list view has on screen, made one a turn of the event loop, so that
// rewriting or adding a screenful of cards (text laid out, pictures asked for) never holds the
// main thread for a whole frame; cards not yet told keep showing what they showed, a few
// milliseconds at most. Rows off screen are told at once: the view has no card for them.
// Without a shown range everything is done at once.
class ShownRowTurns : public QObject
{
public:
    // `announce(first, last)` tells the view that rows first..last hold other places.
    explicit ShownRowTurns(std::function<void(int first, int last)> announce, QObject *parent = nullptr);

    // The rows the view has on screen, first to last; last < first for none known.
    void setShownRows(int first, int last);
    int shownFirst() const { return m_shownFirst; }
    int shownLast() const { return m_shownLast; }

    // Rows first..last hold other places.
    void rewrite(int first, int last);
    // Rows added or taken out: rows waiting move with their cards.
    void rowsInserted(int first, int count);
    void rowsRemoved(int first, int count);
    // `step` runs once a turn once the rewrites are told, as long as it returns true.
    void thenStep(std::function<bool()> step);
    void dropStep();
    // Does now whatever is waiting, before the rows move another way (a row taken out).
    void flush();
    // The view was told about every row some other way (a reset).
    void forget();
    bool pending() const { return !m_waiting.empty() || m_step; }

private:
    bool runTurn();
    void scheduleTurns();

    std::function<void(int, int)> m_announce;
    int m_shownFirst = 0;
    int m_shownLast = -1;
    std::set<int> m_waiting; // rows on screen not told yet, in order
    std::function<bool()> m_step;
    QTimer m_turns;
};

#include "browse/ShownRowTurns.h"

#include <algorithm>

ShownRowTurns::ShownRowTurns(std::function<void(int, int)> announce, QObject *parent)
    : QObject(parent)
    , m_announce(std::move(announce))
{
    // A turn, not a frame: the cards of a change land in the same frame or the next.
    m_turns.setInterval(0);
    connect(&m_turns, &QTimer::timeout, this, [this] {
        if (!runTurn())
            m_turns.stop();
    });
}

void ShownRowTurns::setShownRows(int first, int last)
{
    m_shownFirst = std::max(0, first);
    m_shownLast = last;
}

void ShownRowTurns::rewrite(int first, int last)
{
    if (first > last)
        return;
    const int shownFirst = std::max(first, m_shownFirst);
    const int shownLast = std::min(last, m_shownLast);
    if (shownFirst > shownLast) {
        m_announce(first, last);
        return;
    }
    if (first < shownFirst)
        m_announce(first, shownFirst - 1);
    if (shownLast < last)
        m_announce(shownLast + 1, last);
    for (int row = shownFirst; row <= shownLast; ++row)
        m_waiting.insert(row);
    // The first on screen now, the others in the turns that follow.
    runTurn();
    scheduleTurns();
}

void ShownRowTurns::rowsInserted(int first, int count)
{
    std::set<int> moved;
    for (const int row : m_waiting)
        moved.insert(row >= first ? row + count : row);
    m_waiting.swap(moved);
}

void ShownRowTurns::rowsRemoved(int first, int count)
{
    std::set<int> moved;
    for (const int row : m_waiting)
        if (row < first)
            moved.insert(row);
        else if (row >= first + count)
            moved.insert(row - count);
    m_waiting.swap(moved);
}

void ShownRowTurns::thenStep(std::function<bool()> step)
{
    m_step = std::move(step);
    scheduleTurns();
}

void ShownRowTurns::dropStep() { m_step = nullptr; }

void ShownRowTurns::flush()
{
    while (runTurn()) {
    }
    m_turns.stop();
}

void ShownRowTurns::forget()
{
    m_waiting.clear();
    m_step = nullptr;
    m_turns.stop();
}

bool ShownRowTurns::runTurn()
{
    if (!m_waiting.empty()) {
        const int row = *m_waiting.begin();
        m_waiting.erase(m_waiting.begin());
        m_announce(row, row);
    } else if (m_step && !m_step()) {
        m_step = nullptr;
    }
    return !m_waiting.empty() || m_step;
}

void ShownRowTurns::scheduleTurns()
{
    if ((!m_waiting.empty() || m_step) && !m_turns.isActive())
        m_turns.start();
}

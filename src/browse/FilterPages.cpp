#include "FilterPages.h"

#include "platform/Localize.h"

#include <QString>

#include <algorithm>

FilterTableViewController::FilterTableViewController(const QMap<int, QString> &entries, const QSet<int> &selected, QObject *parent)
    : QObject(parent)
    , m_entries(entries)
    , m_entriesList(entries.keys())
    , m_selected(selected)
{
    // By name in the user's language; an id without a name goes after all the others.
    const QCollator collator = Localize::collator();
    std::stable_sort(m_entriesList.begin(), m_entriesList.end(), [&](int a, int b) {
        const QString &first = m_entries[a];
        const QString &second = m_entries[b];
        if (first.isEmpty() != second.isEmpty())
            return second.isEmpty();
        return collator.compare(first, second) < 0;
    });
}

QVariantList FilterTableViewController::rows() const
{
    QVariantList rows;
    // An empty page shows "all" as chosen: the counts match.
    rows.append(QVariantMap{{QStringLiteral("title"), qtTrId("filters_row_all")},
                            {QStringLiteral("chosen"), m_selected.size() == m_entries.size()},
                            {QStringLiteral("indented"), false}});
    for (int id : m_entriesList)
        rows.append(QVariantMap{{QStringLiteral("title"), m_entries.value(id)},
                                {QStringLiteral("chosen"), m_selected.contains(id)},
                                {QStringLiteral("indented"), true}});
    return rows;
}

void FilterTableViewController::didSelectRow(int row)
{
    if (row < 0 || row > m_entriesList.size())
        return;
    if (row == 0) {
        // "All" with everything chosen empties the page; otherwise it chooses every entry.
        if (m_selected.size() >= m_entriesList.size())
            m_selected.clear();
        else
            m_selected = QSet<int>(m_entriesList.begin(), m_entriesList.end());
    } else {
        const int id = m_entriesList.at(row - 1);
        if (!m_selected.remove(id))
            m_selected.insert(id);
    }
    emit rowsChanged();
    updateCallback(m_selected);
}

void FilterTableViewController::clear()
{
    m_selected.clear();
    emit rowsChanged();
    updateCallback(m_selected);
}

namespace {
// The five ranges: price rank id and the key of its title.
constexpr std::pair<int, const char *> priceRanks[] = {{2, QT_TRID_NOOP("filters_price_rank_upto_7")},
                                                       {3, QT_TRID_NOOP("filters_price_rank_7_to_14")},
                                                       {4, QT_TRID_NOOP("filters_price_rank_14_to_21")},
                                                       {5, QT_TRID_NOOP("filters_price_rank_21_to_29")},
                                                       {6, QT_TRID_NOOP("filters_price_rank_over_29")}};
}

QSet<int> PriceFilterTableViewController::rankIds()
{
    QSet<int> ids;
    for (const auto &[id, key] : priceRanks)
        ids.insert(id);
    return ids;
}

PriceFilterTableViewController::PriceFilterTableViewController(QObject *parent)
    : QObject(parent)
    , m_connectors({{ConnectorState::hidden, ConnectorState::off},
                    {ConnectorState::off, ConnectorState::off},
                    {ConnectorState::off, ConnectorState::off},
                    {ConnectorState::off, ConnectorState::off},
                    {ConnectorState::off, ConnectorState::hidden}})
{
    // Titles are read once, at creation, in the language of the moment.
    for (const auto &[id, key] : priceRanks)
        m_priceRanks.append({id, qtTrId(key)});
    refreshConnectors();
}

QVariantList PriceFilterTableViewController::rows() const
{
    const auto name = [](ConnectorState state) {
        return state == ConnectorState::hidden ? QStringLiteral("hidden") : state == ConnectorState::on ? QStringLiteral("on") : QStringLiteral("off");
    };
    QVariantList rows;
    for (int row = 0; row < m_priceRanks.size(); ++row)
        rows.append(QVariantMap{{QStringLiteral("title"), m_priceRanks.at(row).second},
                                {QStringLiteral("chosen"), m_selected.contains(row)},
                                {QStringLiteral("top"), name(m_connectors.at(row).first)},
                                {QStringLiteral("bottom"), name(m_connectors.at(row).second)}});
    return rows;
}

void PriceFilterTableViewController::selectPrices(const QSet<int> &ids)
{
    for (int row = 0; row < m_priceRanks.size(); ++row)
        if (ids.contains(m_priceRanks.at(row).first))
            m_selected.insert(row);
    refreshConnectors();
    emit rowsChanged();
}

void PriceFilterTableViewController::didSelectRow(int row)
{
    if (row < 0 || row >= m_priceRanks.size())
        return;
    if (!m_selected.remove(row))
        m_selected.insert(row);
    callback();
    refreshConnectors();
    emit rowsChanged();
}

void PriceFilterTableViewController::clear()
{
    m_selected.clear();
    refreshConnectors();
    emit rowsChanged();
    callback();
}

void PriceFilterTableViewController::refreshConnectors()
{
    // Neighbouring chosen ranges are drawn as one joined range; the outer ends stay hidden.
    for (int i = 0; i + 1 < m_connectors.size(); ++i) {
        const bool joined = m_selected.contains(i) && m_selected.contains(i + 1);
        m_connectors[i].second = joined ? ConnectorState::on : ConnectorState::off;
        m_connectors[i + 1].first = joined ? ConnectorState::on : ConnectorState::off;
    }
}

void PriceFilterTableViewController::callback()
{
    QSet<int> ids;
    for (int row : m_selected)
        ids.insert(m_priceRanks.at(row).first);
    updateCallback(ids);
}

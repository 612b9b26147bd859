#pragma once

#include <QMap>
#include <QObject>
#include <QSet>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

#include <functional>

// One page of the filters panel that lists named ids under an "all" row: the municipalities of
// the province, or the cuisines. `selected` holds ids.
class FilterTableViewController : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the filters panel")
    Q_PROPERTY(QVariantList rows READ rows NOTIFY rowsChanged)

public:
    FilterTableViewController(const QMap<int, QString> &entries, const QSet<int> &selected, QObject *parent = nullptr);

    // Row 0 is "all"; row n is the n-th entry by name. Each: {"title", "chosen", "indented"}.
    QVariantList rows() const;
    const QList<int> &entriesList() const { return m_entriesList; }
    const QSet<int> &selected() const { return m_selected; }

    Q_INVOKABLE void didSelectRow(int row);
    void clear();
    std::function<void(const QSet<int> &)> updateCallback = [](const QSet<int> &) {};

signals:
    void rowsChanged();

private:
    QMap<int, QString> m_entries;
    QList<int> m_entriesList;
    QSet<int> m_selected;
};

// The price page: five ranges; neighbouring chosen ranges are joined by lit connectors.
// `selected` holds row numbers, and the callback hears price rank ids.
class PriceFilterTableViewController : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the filters panel")
    Q_PROPERTY(QVariantList rows READ rows NOTIFY rowsChanged)

public:
    enum class ConnectorState { hidden, on, off };

    explicit PriceFilterTableViewController(QObject *parent = nullptr);
    // The price rank ids the page offers, and so the only ones a filter may hold.
    static QSet<int> rankIds();

    // Each: {"title", "chosen", "top", "bottom"} with the connectors as "hidden", "on" or "off".
    QVariantList rows() const;
    const QSet<int> &selected() const { return m_selected; }
    const QList<std::pair<ConnectorState, ConnectorState>> &connectors() const { return m_connectors; }

    void selectPrices(const QSet<int> &ids);
    Q_INVOKABLE void didSelectRow(int row);
    void clear();
    std::function<void(const QSet<int> &)> updateCallback = [](const QSet<int> &) {};

signals:
    void rowsChanged();

private:
    void refreshConnectors();
    void callback();

    QList<std::pair<int, QString>> m_priceRanks;
    QSet<int> m_selected;
    QList<std::pair<ConnectorState, ConnectorState>> m_connectors;
};

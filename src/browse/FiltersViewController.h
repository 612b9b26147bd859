#pragma once

#include "FilterPages.h"
#include "catalogue/Filters.h"
#include "presentation/ViewController.h"

#include <QPointer>

class FiltersDelegate;
class Restaurants;

// The filters panel that slides in from the right: municipalities, cuisines and price ranks on
// three pages. It edits the search screen's filters and tells every change at once; the filter
// button and a tap outside only close it.
class FiltersViewController : public ViewController
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made through the Storyboard registry")
    Q_PROPERTY(FilterTableViewController *locationVC READ locationVC CONSTANT)
    Q_PROPERTY(FilterTableViewController *cuisinesVC READ cuisinesVC CONSTANT)
    Q_PROPERTY(PriceFilterTableViewController *priceVC READ priceVC CONSTANT)
    Q_PROPERTY(int page READ page WRITE showPage NOTIFY pageChanged)
    Q_PROPERTY(bool locationDot READ locationDot NOTIFY filtersUpdated)
    Q_PROPERTY(bool cuisinesDot READ cuisinesDot NOTIFY filtersUpdated)
    Q_PROPERTY(bool priceDot READ priceDot NOTIFY filtersUpdated)
    Q_PROPERTY(bool clearAllVisible READ clearAllVisible NOTIFY filtersUpdated)

public:
    FiltersViewController(Restaurants &restaurants, QObject *parent = nullptr);

    QUrl viewUrl() const override { return QUrl(QStringLiteral("qrc:/Velmora/browse/FiltersView.qml")); }
    bool navigationBarHidden() const override { return true; }

    // Before the panel loads: whom to tell, and the filters it starts from.
    void setDelegate(FiltersDelegate *delegate) { m_delegate = delegate; }
    void setFilters(const Filters &filters) { m_filters = filters; }
    const Filters &filters() const { return m_filters; }

    FilterTableViewController *locationVC() const { return m_locationVC; }
    FilterTableViewController *cuisinesVC() const { return m_cuisinesVC; }
    PriceFilterTableViewController *priceVC() const { return m_priceVC; }
    int page() const { return m_page; }
    void showPage(int page);
    bool locationDot() const { return !m_filters.municipalities.isEmpty(); }
    bool cuisinesDot() const { return !m_filters.cuisines.isEmpty(); }
    bool priceDot() const { return !m_filters.prices.isEmpty(); }
    bool clearAllVisible() const { return !m_filters.isEmpty(); }

    Q_INVOKABLE void clearAllFilters();
    Q_INVOKABLE void close();

signals:
    void pageChanged();
    void filtersUpdated();

protected:
    void viewDidLoad() override;

private:
    void changed();

    Restaurants &m_restaurants;
    FiltersDelegate *m_delegate = nullptr;
    Filters m_filters;
    bool m_apply = true;
    int m_page = 0;
    QPointer<FilterTableViewController> m_locationVC;
    QPointer<FilterTableViewController> m_cuisinesVC;
    QPointer<PriceFilterTableViewController> m_priceVC;
};

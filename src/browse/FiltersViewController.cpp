#include "FiltersViewController.h"

#include "FiltersDelegate.h"
#include "catalogue/Restaurants.h"
#include "platform/DefaultKeys.h"
#include "platform/Dispatch.h"
#include "platform/UserDefaults.h"
#include "presentation/NavigationController.h"

FiltersViewController::FiltersViewController(Restaurants &restaurants, QObject *parent)
    : ViewController(parent)
    , m_restaurants(restaurants)
{
}

void FiltersViewController::viewDidLoad()
{
    const auto province = m_restaurants.province(UserDefaults::standard().integerForKey(DefaultKeys::province));
    m_locationVC = new FilterTableViewController(province ? province->municipalities : QMap<int, QString>(), m_filters.municipalities, this);
    m_locationVC->updateCallback = [this](const QSet<int> &ids) {
        m_filters.municipalities = ids;
        changed();
    };
    m_cuisinesVC = new FilterTableViewController(m_restaurants.cuisines().contents(), m_filters.cuisines, this);
    m_cuisinesVC->updateCallback = [this](const QSet<int> &ids) {
        m_filters.cuisines = ids;
        changed();
    };
    m_priceVC = new PriceFilterTableViewController(this);
    m_priceVC->updateCallback = [this](const QSet<int> &ids) {
        m_filters.prices = ids;
        changed();
    };
    m_priceVC->selectPrices(m_filters.prices);
    // The panel always opens on the municipalities.
    showPage(0);
    emit filtersUpdated();
}

void FiltersViewController::showPage(int page)
{
    if (page < 0 || page > 2 || page == m_page)
        return;
    m_page = page;
    emit pageChanged();
}

void FiltersViewController::changed()
{
    emit filtersUpdated();
    if (m_apply && m_delegate)
        m_delegate->filtersChanged(m_filters);
}

void FiltersViewController::clearAllFilters()
{
    // Three pages cleared, one change told: the last, with every set empty.
    m_apply = false;
    m_locationVC->clear();
    m_cuisinesVC->clear();
    m_apply = true;
    m_priceVC->clear();
}

void FiltersViewController::close()
{
    dispatchMain([self = QPointer(this)] {
        if (self && self->navigationController())
            self->navigationController()->dismissViewController(true);
    });
}

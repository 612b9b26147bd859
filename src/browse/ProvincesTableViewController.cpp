#include "ProvincesTableViewController.h"

#include "ProvincesSelectorDelegate.h"
#include "platform/DefaultKeys.h"
#include "catalogue/Restaurants.h"
#include "platform/Dispatch.h"
#include "platform/Localize.h"
#include "platform/UserDefaults.h"
#include "presentation/NavigationController.h"


#include <algorithm>

ProvincesTableViewController::ProvincesTableViewController(Restaurants &restaurants, QObject *parent)
    : ViewController(parent)
    , m_restaurants(restaurants)
{
}

void ProvincesTableViewController::viewDidLoad()
{
    const auto provinces = m_restaurants.provinces();
    // By name as the user's language orders it: "Ávila" sits among the A's, not after "Zamora".
    const QCollator collator = Localize::collator();
    m_provinceIds = provinces.keys();
    std::stable_sort(m_provinceIds.begin(), m_provinceIds.end(),
                     [&](int a, int b) { return collator.compare(provinces.value(a)->name, provinces.value(b)->name) < 0; });
    for (int id : m_provinceIds) {
        const auto &province = provinces.value(id);
        m_rows.append(QVariantMap{{QStringLiteral("id"), id},
                                  {QStringLiteral("name"), province->name},
                                  {QStringLiteral("count"), qtTrId("provinces_number_of_places")
                                                                .replace(QStringLiteral("{N}"), QString::number(province->restaurants.size()))}});
    }
    const auto current = m_restaurants.province(UserDefaults::standard().integerForKey(DefaultKeys::province));
    m_currentName = current ? current->name : QStringLiteral("(invalid province)");
    emit rowsChanged();
}

void ProvincesTableViewController::didSelectRow(int row)
{
    if (row < 0 || row >= m_provinceIds.size())
        return;
    UserDefaults::standard().setInteger(m_provinceIds.at(row), DefaultKeys::province);
    m_pickedRow = row;
    emit pickedRowChanged();
    // Closing is the delegate's part; a picker nobody listens to stays open.
    if (m_delegate)
        m_delegate->provinceSelected(m_provinceIds.at(row), false);
}

void ProvincesTableViewController::close()
{
    dispatchMain([self = QPointer(this)] {
        if (self && self->navigationController())
            self->navigationController()->dismissViewController(true);
    });
}

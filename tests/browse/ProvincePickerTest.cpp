#include "browse/ProvincesSelectorDelegate.h"
#include "browse/ProvincesTableViewController.h"
#include "fixtures/TestHome.h"
#include "platform/Localize.h"
#include "platform/UserDefaults.h"
#include "presentation/NavigationController.h"

#include <QTest>

#include <gtest/gtest.h>

namespace {
// Records what the picker tells the search screen.
struct Listener : ProvincesSelectorDelegate {
    void provinceSelected(int id, bool keepFilters) override { calls.append({id, keepFilters}); }
    QList<std::pair<int, bool>> calls;
};

CatalogueFixture threeProvinces()
{
    CatalogueFixture fixture = CatalogueFixture::small();
    fixture.states = {{1, QStringLiteral("Zamora"), std::nullopt}, {2, QStringLiteral("Matanzas"), std::nullopt},
                      {3, QStringLiteral("Ávila"), std::nullopt}};
    fixture.counties.append({30, 3, QStringLiteral("Ávila 1")});
    return fixture;
}
}

// Catches: provinces ordered by bytes ("Ávila" after "Zamora"), counts that aren't the
// province's places, a pick that isn't stored or told, a close that changes the province, and a
// province without places left out.
TEST(ProvincePicker, OrderCountsPickAndClose)
{
    TestHome home;
    Localize::setCurrentLanguage(QStringLiteral("en"));
    home.defaults().setInteger(2, QStringLiteral("Province"));
    auto restaurants = home.openCatalogue(threeProvinces());
    NavigationController navigation;
    NavigationController host;
    ProvincesTableViewController picker(*restaurants);
    Listener listener;
    picker.setDelegate(&listener);
    navigation.setViewControllers({}, false);
    host.presentViewController(&picker, false, Presentation::fromTop());

    ASSERT_EQ(picker.provinceIds(), (QList<int>{3, 2, 1}));
    EXPECT_EQ(picker.currentName(), QStringLiteral("Matanzas"));
    const QVariantMap zamora = picker.rows().at(2).toMap();
    EXPECT_EQ(zamora.value(QStringLiteral("name")), QStringLiteral("Zamora"));
    EXPECT_EQ(zamora.value(QStringLiteral("count")).toString(),
              QStringLiteral("%1 places").arg(restaurants->province(1)->restaurants.size()));
    EXPECT_EQ(picker.rows().at(0).toMap().value(QStringLiteral("count")).toString(), QStringLiteral("0 places"));

    picker.close();
    QTest::qWait(10);
    EXPECT_EQ(host.presentedViewController(), nullptr);
    EXPECT_EQ(UserDefaults::standard().integerForKey(QStringLiteral("Province")), 2);
    EXPECT_TRUE(listener.calls.isEmpty());

    picker.didSelectRow(0);
    EXPECT_EQ(UserDefaults::standard().integerForKey(QStringLiteral("Province")), 3);
    EXPECT_EQ(listener.calls, (QList<std::pair<int, bool>>{{3, false}}));
    picker.didSelectRow(7); // no such row
    EXPECT_EQ(listener.calls.size(), 1);
}

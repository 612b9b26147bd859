#include "browse/FilterPages.h"
#include "browse/FiltersDelegate.h"
#include "browse/FiltersViewController.h"
#include "catalogue/Filters.h"
#include "fixtures/TestHome.h"
#include "platform/Localize.h"
#include "platform/UserDefaults.h"

#include <gtest/gtest.h>

namespace {
struct Listener : FiltersDelegate {
    void filtersChanged(const Filters &filters) override { heard.append(filters); }
    QList<Filters> heard;
};

bool chosen(const QVariantList &rows, int row) { return rows.at(row).toMap().value(QStringLiteral("chosen")).toBool(); }
}

// Catches: "all" not following the counts (chosen one by one, emptied when all are chosen), an
// empty page not showing "all" as chosen, names out of the language's order, and a callback
// that doesn't hear each tap.
TEST(FiltersPanel, ListPagesAndTheAllRow)
{
    QList<QSet<int>> heard;
    FilterTableViewController page({{3, QStringLiteral("Zapata")}, {1, QStringLiteral("Ámbar")}, {2, QStringLiteral("Centro")}, {9, QString()}}, {});
    page.updateCallback = [&](const QSet<int> &ids) { heard.append(ids); };
    EXPECT_EQ(page.entriesList(), (QList<int>{1, 2, 3, 9}));
    EXPECT_FALSE(chosen(page.rows(), 0));
    for (int row = 1; row <= 4; ++row)
        page.didSelectRow(row);
    EXPECT_TRUE(chosen(page.rows(), 0)) << "every row chosen one by one makes all";
    page.didSelectRow(0);
    EXPECT_TRUE(page.selected().isEmpty());
    page.didSelectRow(2);
    page.didSelectRow(0);
    EXPECT_EQ(page.selected(), (QSet<int>{1, 2, 3, 9})) << "all with some chosen chooses every one";
    EXPECT_EQ(heard.size(), 7);
    EXPECT_EQ(heard.last(), page.selected());

    FilterTableViewController empty({}, {});
    ASSERT_EQ(empty.rows().size(), 1);
    EXPECT_TRUE(chosen(empty.rows(), 0));
}

// Catches: connectors lit between ranges that aren't neighbours, the outer ends shown, and price
// rows reported as rows instead of price rank ids.
TEST(FiltersPanel, PriceRangesJoinNeighbours)
{
    PriceFilterTableViewController prices;
    QSet<int> last;
    prices.updateCallback = [&](const QSet<int> &ids) { last = ids; };
    using S = PriceFilterTableViewController::ConnectorState;
    prices.didSelectRow(0);
    prices.didSelectRow(2);
    EXPECT_EQ(last, (QSet<int>{2, 4}));
    for (const auto &[top, bottom] : prices.connectors()) {
        EXPECT_NE(top, S::on);
        EXPECT_NE(bottom, S::on);
    }
    prices.didSelectRow(1);
    EXPECT_EQ(prices.connectors().at(0).second, S::on);
    EXPECT_EQ(prices.connectors().at(1).first, S::on);
    EXPECT_EQ(prices.connectors().at(2).first, S::on);
    EXPECT_EQ(prices.connectors().at(2).second, S::off);
    EXPECT_EQ(prices.connectors().at(0).first, S::hidden);
    EXPECT_EQ(prices.connectors().at(4).second, S::hidden);
    prices.clear();
    EXPECT_TRUE(last.isEmpty());
}

// Catches: the panel not starting from the search screen's filters, a change not told at once,
// and clearing all told more than once.
TEST(FiltersPanel, EveryChangeIsToldAndClearingIsOne)
{
    TestHome home;
    Localize::setCurrentLanguage(QStringLiteral("en"));
    home.defaults().setInteger(1, QStringLiteral("Province"));
    auto restaurants = home.openCatalogue(CatalogueFixture::small());
    FiltersViewController panel(*restaurants);
    Listener listener;
    Filters start;
    start.prices = {3};
    start.cuisines = {1};
    panel.setFilters(start);
    panel.setDelegate(&listener);
    panel.loadViewIfNeeded();
    EXPECT_TRUE(panel.priceDot() && panel.cuisinesDot() && !panel.locationDot() && panel.clearAllVisible());
    EXPECT_TRUE(panel.priceVC()->selected().contains(1)) << "price rank 3 is the second row";
    EXPECT_EQ(panel.page(), 0);

    panel.locationVC()->didSelectRow(1);
    ASSERT_EQ(listener.heard.size(), 1);
    EXPECT_EQ(listener.heard.last().municipalities.size(), 1);
    EXPECT_EQ(listener.heard.last().prices, QSet<int>{3});

    panel.clearAllFilters();
    ASSERT_EQ(listener.heard.size(), 2);
    EXPECT_TRUE(listener.heard.last().isEmpty());
    EXPECT_FALSE(panel.clearAllVisible());
}

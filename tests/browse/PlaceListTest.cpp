#include "app/Scenes.h"
#include "browse/LugaresTableViewController.h"
#include "fixtures/TestHome.h"
#include "presentation/NavigationController.h"

#include <QAbstractItemModelTester>
#include <QTest>

#include <gtest/gtest.h>

namespace {
QList<SortedEntry> entries(std::initializer_list<std::pair<int, const char *>> pairs)
{
    QList<SortedEntry> list;
    for (const auto &[id, letter] : pairs)
        list.append({id, QString::fromUtf8(letter)});
    return list;
}

QStringList names(const QList<Section> &sections)
{
    QStringList result;
    for (const Section &section : sections)
        result.append(section.name);
    return result;
}
}

// Catches: digits split into sections of their own, punctuation folded into "#", an empty
// letter opening a section, and canonically equal letters split.
TEST(PlaceList, GroupingIntoSections)
{
    EXPECT_TRUE(groupIntoSections({}).isEmpty());
    const QList<Section> sections = groupIntoSections(
        entries({{1, "1"}, {2, "9"}, {3, "0"}, {4, "A"}, {5, ""}, {6, "¡"}, {7, "N"}, {8, "N"}}));
    EXPECT_EQ(names(sections), (QStringList{QStringLiteral("#"), QStringLiteral("A"), QStringLiteral("¡"), QStringLiteral("N")}));
    EXPECT_EQ(sections.at(0).ids, (QList<int>{1, 2, 3}));
    EXPECT_EQ(sections.at(1).ids, (QList<int>{4, 5})) << "an empty letter joins the section before it";
    EXPECT_TRUE(groupIntoSections(entries({{1, ""}})).isEmpty()) << "and is dropped with no section yet";
    const QList<Section> canonical = groupIntoSections({{1, QStringLiteral("Ñ")}, {2, QStringLiteral("N\u0303")}});
    EXPECT_EQ(canonical.size(), 1);
}

// Catches: deleting the last row of a section leaving its letter, the owner told before the
// row is gone, the index brightening while another row is still swiped, and a grey call button
// that acts.
TEST(PlaceList, RowsSwipesAndDeletion)
{
    TestHome home;
    CatalogueFixture fixture = CatalogueFixture::small();
    fixture.places.append({103, QStringLiteral("Zapata"), QStringLiteral("zapata"), 10, 2, 0, QStringLiteral("Calle Z"), std::nullopt});
    auto restaurants = home.openCatalogue(fixture);
    home.startAnalytics();
    LugaresTableViewController list(*restaurants);
    QAbstractItemModelTester tester(list.rows(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    list.loadViewIfNeeded();
    list.swipeButtons = {LugaresTableViewController::SwipeButtonType::call, LugaresTableViewController::SwipeButtonType::delete_};
    int deleted = 0;
    list.deleteCallback = [&](int id) {
        EXPECT_FALSE(list.sections().last().ids.contains(id)) << "the row is gone before the owner hears";
        deleted = id;
        return true;
    };
    list.setEntries({100, 101, 103}, true, QString());
    ASSERT_TRUE(QTest::qWaitFor([&] { return list.rows()->rowCount() == 3; }, 3000));
    EXPECT_EQ(list.sectionIndexTitles(), (QStringList{QStringLiteral("E"), QStringLiteral("L"), QStringLiteral("Z")}));
    EXPECT_EQ(list.rowForSection(2), 2);

    // Row 2 is "Zapata", alone under Z, without a phone: its call button is grey and inert.
    const QVariantList buttons = list.swipeButtonsForRow(2);
    ASSERT_EQ(buttons.size(), 2);
    EXPECT_EQ(buttons.at(0).toMap().value(QStringLiteral("type")), QStringLiteral("delete"));
    EXPECT_EQ(buttons.at(1).toMap().value(QStringLiteral("background")), QStringLiteral("#cccccc"));
    EXPECT_FALSE(list.tappedButton(2, 0));
    EXPECT_EQ(list.swipeButtonsForRow(1).at(1).toMap().value(QStringLiteral("background")), QStringLiteral("#9acb22"));

    list.swipeWillBegin(1);
    list.swipeWillBegin(2);
    EXPECT_DOUBLE_EQ(list.sectionIndexAlpha(), 0.4);
    list.swipeWillEnd(1);
    EXPECT_DOUBLE_EQ(list.sectionIndexAlpha(), 0.4) << "another row is still open";
    list.swipeWillEnd(2);
    EXPECT_DOUBLE_EQ(list.sectionIndexAlpha(), 1.0);
    EXPECT_EQ(home.storedEvents(), QStringList(2, QStringLiteral("Places/Swiped/Cell/1"))) << "one report per swipe begun";

    EXPECT_TRUE(list.tappedButton(2, 1));
    EXPECT_EQ(deleted, 103);
    EXPECT_EQ(list.sectionIndexTitles(), (QStringList{QStringLiteral("E"), QStringLiteral("L")}));
    EXPECT_EQ(list.rows()->rowCount(), 2);
    EXPECT_FALSE(list.tappedButton(0, 7)) << "an index past the end";

    // While editing, rows can't be selected: nothing is pushed. Afterwards the card opens.
    registerApplicationScenes();
    NavigationController navigation;
    LugaresTableViewController root(*restaurants);
    navigation.setViewControllers({&root}, false);
    list.setParent(&root);
    list.setEditing(true);
    list.didSelectRow(0);
    EXPECT_EQ(navigation.viewControllers().size(), 1);
    EXPECT_EQ(home.storedEvents().size(), 2) << "no tap reported while editing";
    list.setEditing(false);
    list.didSelectRow(0);
    EXPECT_EQ(navigation.viewControllers().size(), 2);
    EXPECT_EQ(home.storedEvents().mid(2), (QStringList{QStringLiteral("Navigation/Tapped/Place/1"), QStringLiteral("screen:RestaurantView")}));
    EXPECT_EQ(navigation.topViewController()->title(), QStringLiteral("El Aljibe"));
    navigation.setViewControllers({}, false);
    list.setParent(nullptr);
}

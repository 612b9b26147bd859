#include "app/Scenes.h"
#include "browse/LugaresTableViewController.h"
#include "fixtures/TestHome.h"
#include "presentation/NavigationController.h"

#include <QAbstractItemModelTester>
#include <QTest>

#include <algorithm>
#include <numeric>
#include <random>

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

// Catches: a row on screen never told it holds another place, rows added at the wrong place
// or twice while those on screen are added a turn at a time, a change arriving before the last
// one's turns are over going wrong, and a screenful of cards rewritten or added in one turn.
TEST(PlaceList, RowsOnScreenFollowEveryListAfewCardsATurn)
{
    TestHome home;
    auto restaurants = home.openCatalogue(CatalogueFixture::small());
    LugaresTableViewController list(*restaurants);
    QAbstractItemModel &rows = *list.rows();
    QAbstractItemModelTester tester(&rows, QAbstractItemModelTester::FailureReportingMode::Fatal);
    // What a view would show: each row's place as it was last told.
    QList<int> shown;
    // Element by element: QList's own == hands memcmp a null pointer for an empty list.
    const auto showing = [&](const QList<int> &ids) { return std::ranges::equal(shown, ids); };
    const auto placeAt = [&](int row) { return rows.data(rows.index(row, 0), Qt::UserRole + 1).toInt(); };
    int screenTop = 0; // the view shows rows screenTop to screenTop + 7
    int toldOnScreen = 0; // cards rewritten or added there
    bool firstFill = true;
    QObject::connect(&rows, &QAbstractItemModel::rowsInserted, [&](const QModelIndex &, int first, int last) {
        int onScreen = 0;
        for (int row = first; row <= last; ++row) {
            shown.insert(row, placeAt(row));
            onScreen += row >= screenTop && row < screenTop + 8;
        }
        EXPECT_TRUE(onScreen <= 1 || firstFill) << "cards added on screen at once";
        toldOnScreen += onScreen;
    });
    QObject::connect(&rows, &QAbstractItemModel::rowsRemoved, [&](const QModelIndex &, int first, int last) { shown.remove(first, last - first + 1); });
    QObject::connect(&rows, &QAbstractItemModel::dataChanged, [&](const QModelIndex &from, const QModelIndex &to, const QList<int> &roles) {
        // Told only its section, a card keeps its place.
        if (!roles.isEmpty())
            return;
        int onScreen = 0;
        for (int row = from.row(); row <= to.row(); ++row) {
            shown[row] = placeAt(row);
            onScreen += row >= screenTop && row < screenTop + 8;
        }
        EXPECT_LE(onScreen, 1) << "cards rewritten on screen at once";
        toldOnScreen += onScreen;
    });
    QObject::connect(&rows, &QAbstractItemModel::modelReset, [&] {
        shown.clear();
        for (int row = 0; row < rows.rowCount(); ++row)
            shown.append(placeAt(row));
    });
    const auto run = [](int from, int count) {
        QList<int> ids(count);
        std::iota(ids.begin(), ids.end(), from);
        return ids;
    };
    const auto show = [&](const QList<int> &ids) {
        QList<SortedEntry> entries;
        for (const int id : ids)
            entries.append({id, QStringLiteral("A")});
        list.showSections(groupIntoSections(entries));
    };
    // The first rows the list ever has come at once: nothing else is on screen yet.
    list.setShownRows(0, 7);
    show(run(1, 20));
    EXPECT_EQ(shown, run(1, 20));
    firstFill = false;
    std::mt19937 random(7);
    QList<int> previous = run(1, 20);
    for (int round = 0; round < 120; ++round) {
        // Now at the top, now scrolled a little.
        screenTop = round / 10 % 2 * 4;
        list.setShownRows(screenTop, screenTop + 7);
        // Lists sharing a start or an end with the last, short and long, from none to 40 places.
        QList<int> ids;
        const int length = round % 7 == 0 ? int(random() % 3) : int(random() % 40);
        if (round % 3 == 0 && !previous.isEmpty())
            ids = previous.mid(0, int(random() % previous.size()));
        while (ids.size() < length) {
            const int id = 1 + int(random() % 200);
            if (!ids.contains(id))
                ids.append(id);
        }
        if (round % 4 == 1 && !previous.isEmpty()) { // a few places come in among those on screen
            ids = previous;
            for (int added = 1 + int(random() % 3); added > 0; --added)
                if (const int id = 200 + round * 4 + added; !ids.contains(id))
                    ids.insert(int(random() % std::min<qsizetype>(ids.size() + 1, 8)), id);
        }
        if (round % 5 == 0 && !previous.isEmpty())
            for (const int id : previous.mid(previous.size() / 2))
                if (!ids.contains(id))
                    ids.append(id);
        QList<SortedEntry> entries;
        for (const int id : ids)
            entries.append({id, QStringLiteral("ABC").at(id % 3)});
        toldOnScreen = 0;
        list.showSections(groupIntoSections(entries));
        EXPECT_LE(toldOnScreen, 1) << "round " << round << ": cards on screen changed at once";
        // Now and then the next list comes before this one's turns are over.
        if (random() % 2 != 0) {
            ASSERT_TRUE(QTest::qWaitFor([&] { return showing(ids); }, 2000))
                << "round " << round << ": " << shown.size() << " rows shown of " << ids.size();
        }
        previous = ids;
    }
    ASSERT_TRUE(QTest::qWaitFor([&] { return showing(previous); }, 2000));

    // Rows taken out, or added above the screen, before the cards of the last change were all
    // told: the cards still waiting have moved, and are told where they now stand.
    for (const int top : {0, 4}) {
        screenTop = top;
        list.setShownRows(top, top + 7);
        show(run(1, 30));
        ASSERT_TRUE(QTest::qWaitFor([&] { return showing(run(1, 30)); }, 2000));
        show(run(101, 30));
        QList<int> moved = run(101, 30);
        if (top == 0)
            moved.remove(2, 3);
        else
            moved = QList<int>{301, 302} + moved;
        show(moved);
        ASSERT_TRUE(QTest::qWaitFor([&] { return showing(moved); }, 2000)) << "screen from row " << top;
    }
}

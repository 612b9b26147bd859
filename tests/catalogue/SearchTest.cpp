#include "catalogue/EditDistance.h"
#include "catalogue/Filters.h"
#include "catalogue/PlaceCuisines.h"
#include "catalogue/PlaceListing.h"
#include "catalogue/SearchTerms.h"
#include "fixtures/TestHome.h"
#include "platform/DatabaseQueue.h"
#include "platform/UserDefaults.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <gtest/gtest.h>

#include <random>

namespace {
// A tiny guide of the capital (municipalities 10 and 11) and Matanzas (20).
CatalogueFixture searchFixture()
{
    CatalogueFixture f = CatalogueFixture::small();
    f.places = {
        {1, QStringLiteral("La Bodeguita del Medio"), QStringLiteral("la bodeguita del medio"), 11, 3, 0,
         QStringLiteral("Empedrado 207"), QStringLiteral("78671374")},
        {2, QStringLiteral("El Aljibe"), QStringLiteral("el aljibe"), 10, 4, 0, QStringLiteral("Calle Bodega 5"), std::nullopt},
        {3, QStringLiteral("Mansión Xanadú"), QStringLiteral("mansion xanadu"), 20, 4, 0, QStringLiteral("Autopista Sur"), std::nullopt},
        {4, QStringLiteral("Cafe Fortuna"), QStringLiteral("cafe fortuna"), 10, 2, 1, QStringLiteral("Calle 5"), std::nullopt},
        {5, QStringLiteral("Ñico"), QStringLiteral("nico"), 10, 2, 0, QStringLiteral("Obispo"), std::nullopt},
        {6, QStringLiteral("Sin Nombre"), QString(), 10, 2, 0, QStringLiteral("Obispo"), std::nullopt},
        {7, QStringLiteral("Bar Medio"), QStringLiteral("bar medio"), 11, 2, 0, QStringLiteral("Prado"), std::nullopt},
        {8, QStringLiteral("Bodega Vieja"), QStringLiteral("bodega vieja"), 11, 2, 0, QStringLiteral("Prado"), std::nullopt},
    };
    f.restaurantCuisines = {{1, 1}, {1, 3}, {2, 1}, {4, 2}, {8, 3}};
    f.offerPlaces = {};
    f.promotedPlaces = {};
    return f;
}

struct SearchHome {
    explicit SearchHome(CatalogueFixture fixture = searchFixture()) { restaurants = home.openCatalogue(fixture); }
    QList<int> sorted(const QSet<int> &ids) const
    {
        QList<int> list(ids.begin(), ids.end());
        std::sort(list.begin(), list.end());
        return list;
    }
    QList<int> search(const QString &text) const { return sorted(restaurants->searchIds(text)); }
    // A marker row that survives only as long as the index is not rebuilt.
    void markIndex() const
    {
        restaurants->ftsQueue()->inDatabase(
            [](Database &db) { db.executeUpdate(QStringLiteral("INSERT INTO extras VALUES('marker', 'x')")); });
    }
    bool indexMarked() const
    {
        bool marked = false;
        restaurants->ftsQueue()->inDatabase([&](Database &db) {
            db.forEachRow(QStringLiteral("SELECT val FROM extras WHERE key = 'marker'"), {}, [&](const ResultSet &) {
                marked = true;
                return false;
            });
        });
        return marked;
    }
    TestHome home;
    std::unique_ptr<Restaurants> restaurants;
};

QList<int> idsOf(const QList<SortedEntry> &entries)
{
    QList<int> ids;
    for (const SortedEntry &entry : entries)
        ids.append(entry.id);
    return ids;
}
}

// Catches: names indexed by whole words only, addresses expanded into suffixes, accents or
// case not folded, and several words taken as alternatives instead of all being required.
TEST(Search, FreeTextMatches)
{
    SearchHome home;
    EXPECT_EQ(home.search(QStringLiteral("degu")), QList<int>{1});
    EXPECT_EQ(home.search(QStringLiteral("bode")), (QList<int>{1, 2, 8}));     // 2 by its address
    EXPECT_EQ(home.search(QStringLiteral("pedra")), QList<int>{});              // inside an address word
    EXPECT_EQ(home.search(QStringLiteral("Empe")), QList<int>{1});
    EXPECT_EQ(home.search(QStringLiteral("MANSION")), QList<int>{3});
    EXPECT_EQ(home.search(QStringLiteral("xanadú")), QList<int>{3});
    EXPECT_EQ(home.search(QStringLiteral("café")), QList<int>{4});
    EXPECT_EQ(home.search(QStringLiteral("nico")), QList<int>{5});
    EXPECT_EQ(home.search(QStringLiteral("  bode\n medio ")), QList<int>{1});
    EXPECT_EQ(home.search(QStringLiteral("degu aljibe")), QList<int>{});
    EXPECT_EQ(home.search(QStringLiteral("bode aljibe")), QList<int>{2}); // one word by the address
}

// Catches: query syntax typed by the user crashing the search or logging more than a line, and
// blanks matching everything.
TEST(Search, AnyTypedTextIsSafe)
{
    SearchHome home;
    for (const QString &text : {QStringLiteral(""), QStringLiteral("   \n\t"), QStringLiteral("\""), QStringLiteral("*"),
                                QStringLiteral("(("), QStringLiteral("bode)"), QStringLiteral("\"bode"),
                                QStringLiteral("NEAR/"), QStringLiteral("-"), QStringLiteral("^")})
        EXPECT_TRUE(home.restaurants->searchIds(text).isEmpty()) << text.toStdString();
    // Query words are terms like any other: "OR" is a prefix ("Fortuna"), and every term is required.
    EXPECT_EQ(home.search(QStringLiteral("OR")), QList<int>{4});
    for (const QString &text : {QStringLiteral("AND NOT"), QStringLiteral("bode OR medio"), QString(5000, QLatin1Char('a')),
                                QStringLiteral("a b c d e f g h i j k l m n o p")})
        EXPECT_TRUE(home.search(text).isEmpty()) << text.left(20).toStdString();
}

// Catches: an index rebuilt at every start, kept for a new catalogue, or not rebuilt on request.
TEST(Search, IndexFollowsTheCatalogueDate)
{
    SearchHome home;
    home.markIndex();
    ASSERT_TRUE(home.indexMarked());
    home.restaurants->reload();
    EXPECT_TRUE(home.indexMarked()) << "a current index was rebuilt";
    home.restaurants->openSearchIndex(true);
    home.restaurants->waitForSearchIndex();
    EXPECT_FALSE(home.indexMarked()) << "an explicit rebuild kept the old index";
    EXPECT_EQ(home.search(QStringLiteral("degu")), QList<int>{1});

    home.markIndex();
    CatalogueFixture newer = searchFixture();
    newer.versionDate = QStringLiteral("20170301");
    newer.places.append({9, QStringLiteral("La Guarida"), QStringLiteral("la guarida"), 11, 4, 0, QStringLiteral("Concordia 418"), std::nullopt});
    home.home.addCatalogue(newer, QStringLiteral("velmora-20170301.db"));
    home.restaurants->reload();
    home.restaurants->waitForSearchIndex();
    EXPECT_FALSE(home.indexMarked()) << "a new catalogue kept the old index";
    EXPECT_EQ(home.search(QStringLiteral("uarid")), QList<int>{9});
}

// Catches: the cuisines test done wrongly (places without cuisines kept), closed places shown
// when hidden, prices ignored, and a malformed statement reaching SQLite.
TEST(Search, FilteredIds)
{
    SearchHome home;
    Restaurants &r = *home.restaurants;
    EXPECT_EQ(home.sorted(r.filteredIds(Filters{}, false)), (QList<int>{1, 2, 3, 4, 5, 6, 7, 8}));
    Filters capital;
    capital.municipalities = {10, 11};
    EXPECT_EQ(home.sorted(r.filteredIds(capital, false)), (QList<int>{1, 2, 4, 5, 6, 7, 8}));
    EXPECT_EQ(home.sorted(r.filteredIds(capital, true)), (QList<int>{1, 2, 5, 6, 7, 8}));
    capital.prices = {3, 4};
    EXPECT_EQ(home.sorted(r.filteredIds(capital, true)), (QList<int>{1, 2}));
    capital.prices.clear();
    capital.cuisines = {3};
    EXPECT_EQ(home.sorted(r.filteredIds(capital, false)), (QList<int>{1, 8}));
    capital.cuisines = {2, 9};
    EXPECT_EQ(home.sorted(r.filteredIds(capital, false)), QList<int>{4});

    Filters pricesOnly;
    pricesOnly.prices = {2};
    EXPECT_TRUE(r.filteredIds(pricesOnly, false).isEmpty());
    EXPECT_TRUE(r.filteredIds(Filters{}, true).isEmpty());
}

// Catches: a place without a sort name listed, a second listing querying again, exact
// substrings not leading their section, and letters not upper-cased.
TEST(Search, SortedEntries)
{
    SearchHome home;
    Restaurants &r = *home.restaurants;
    const QSet<int> capital = r.filteredIds(Filters{{10, 11}, {}, {}}, false);
    const QList<SortedEntry> alphabetic = r.sortedEntries(capital, QString());
    EXPECT_EQ(idsOf(alphabetic), (QList<int>{7, 8, 4, 2, 1, 5})); // 6 has no sort name
    EXPECT_EQ(alphabetic.first().letter, QStringLiteral("B"));
    EXPECT_EQ(alphabetic.last().letter, QStringLiteral("N")); // "Ñico" files under N

    EXPECT_EQ(preparedStatementsDuring([&] {
                  // "medio" is inside 7's and 1's names; 8 is only near it, so it follows 7 in B.
                  EXPECT_EQ(idsOf(r.sortedEntries(capital, QStringLiteral("Medio"))), (QList<int>{7, 8, 4, 2, 1, 5}));
                  EXPECT_EQ(idsOf(r.sortedEntries(capital, QStringLiteral("vieja"))), (QList<int>{8, 7, 4, 2, 1, 5}));
              }),
              0);
    EXPECT_TRUE(r.sortedEntries({}, QStringLiteral("x")).isEmpty());
    EXPECT_TRUE(r.sortedEntries({9999}, QString()).isEmpty());
}

// Catches: distances counted in UTF-16 units instead of characters, substitution costing 1,
// and the empty sides.
TEST(Search, EditDistanceWeighsSubstitutionsDouble)
{
    EXPECT_EQ(editDistance(QStringLiteral("año"), QStringLiteral("ano")), 2);
    EXPECT_EQ(editDistance(QStringLiteral("kitten"), QStringLiteral("sitting")), 5);
    EXPECT_EQ(editDistance(QStringLiteral("😀"), QStringLiteral("x")), 2);
    EXPECT_EQ(editDistance(QStringLiteral("a😀b"), QStringLiteral("ab")), 1);
    EXPECT_EQ(editDistance(QStringLiteral("Habana"), QStringLiteral("Habana")), 0);
    EXPECT_EQ(editDistance(QString(), QStringLiteral("abc")), 3);
}

// Catches: the old price_rank rule off by one, malformed stored forms half-loaded, a load that
// keeps old sets, and the stored form not surviving the settings store.
TEST(Search, FiltersStoredForm)
{
    TestHome home;
    Filters filters;
    filters.municipalities = {10};
    filters.load({{QStringLiteral("price_rank"), 2}});
    EXPECT_TRUE(filters.isEmpty());
    filters.load({{QStringLiteral("price_rank"), 5}, {QStringLiteral("cuisines"), QVariantList{1, 2}}});
    EXPECT_EQ(filters.prices, (QSet<int>{2, 3, 4}));
    EXPECT_EQ(filters.cuisines, (QSet<int>{1, 2}));

    filters.load({{QStringLiteral("municipalities"), QStringLiteral("10")},
                  {QStringLiteral("cuisines"), QVariantList{1, QStringLiteral("two")}},
                  {QStringLiteral("prices"), QVariantList{2.0, 3.0}}});
    EXPECT_TRUE(filters.municipalities.isEmpty());
    EXPECT_TRUE(filters.cuisines.isEmpty());
    EXPECT_EQ(filters.prices, (QSet<int>{2, 3})); // whole numbers from a JSON reader

    Filters stored;
    stored.municipalities = {10, 11};
    stored.cuisines = {3};
    home.defaults().setObject(stored.dictionary(), QStringLiteral("filters"));
    UserDefaults::setStandard(nullptr); // as after a restart
    Filters restored;
    restored.load(home.defaults().dictionaryForKey(QStringLiteral("filters")));
    EXPECT_EQ(restored, stored);

    // Numbers no int holds are no ids (converting them would be undefined), and an old rank far
    // beyond any catalogue's is capped instead of becoming millions of ids.
    filters.load({{QStringLiteral("municipalities"), QVariantList{1e300, 5}},
                  {QStringLiteral("cuisines"), QVariantList{qlonglong(1) << 40}},
                  {QStringLiteral("prices"), QVariantList{-1e12}}});
    EXPECT_TRUE(filters.isEmpty());
    filters.load({{QStringLiteral("price_rank"), 1e7}});
    EXPECT_EQ(filters.prices.size(), Filters::maxLegacyPriceRank - 2);
    filters.load({{QStringLiteral("price_rank"), 1e30}});
    EXPECT_TRUE(filters.prices.isEmpty());
}

// Catches: the suffix expansion of one huge name growing with the square of its length (a
// 24,000-character name took 10 s and 1.7 GB to index).
TEST(Search, HugeNamesAreExpandedWithinLimits)
{
    const QString huge = QStringLiteral("bodega ") + QString(24000, QLatin1Char('a')) + QLatin1Char(' ') + QString(1000000, QLatin1Char('b'));
    const QString terms = searchTerms(huge, QString(50000, QLatin1Char('c')));
    EXPECT_LT(terms.size(), 2 * maxIndexedWordLength * maxIndexedWordLength + 2 * maxIndexedAddressLength);
    EXPECT_TRUE(terms.split(QLatin1Char(' ')).contains(QStringLiteral("dega")));
    EXPECT_EQ(indexedNameWords(huge), (QStringList{QStringLiteral("bodega"), QString(maxIndexedWordLength, QLatin1Char('a'))}));
}

// Catches: the scan that answers while the index is being built finding other places than the
// index will: the user must not see results change when the index becomes ready.
TEST(Search, TheScanBeforeTheIndexFindsWhatTheIndexFinds)
{
    CatalogueFixture fixture = searchFixture();
    fixture.places.append({9, QStringLiteral("Casa-Pepe's O'Reilly"), QStringLiteral("casa pepe"), 10, 2, 0,
                           QStringLiteral("Calle O'Reilly 304, esq. Aguiar"), std::nullopt});
    fixture.places.append({10, QStringLiteral("CAFÉ  Ñandú\tdel Mar"), QStringLiteral("cafe nandu"), 10, 2, 0,
                           QStringLiteral("Malecón y 23"), std::nullopt});
    TestHome home;
    home.addCatalogue(fixture, QStringLiteral("velmora-20170101.db"));
    Restaurants restaurants(home.environment());
    const QStringList queries = {QStringLiteral("bode"), QStringLiteral("degu"), QStringLiteral("medio vie"),
                                 QStringLiteral("mansion"), QStringLiteral("MANSIÓN"), QStringLiteral("nandu"),
                                 QStringLiteral("andu"), QStringLiteral("ñan"), QStringLiteral("calle"),
                                 QStringLiteral("alle"), QStringLiteral("reilly"), QStringLiteral("o'rei"),
                                 QStringLiteral("pepe"), QStringLiteral("epe"), QStringLiteral("23"),
                                 QStringLiteral("malecon"), QStringLiteral("aguiar"), QStringLiteral("5"),
                                 QStringLiteral("c"), QStringLiteral("  obispo  "), QStringLiteral("cafe mar")};
    restaurants.waitForSearchIndex();
    ASSERT_TRUE(restaurants.ftsQueue());
    std::shared_ptr<const PlaceListing> listing;
    restaurants.dbq()->inDatabase([&](Database &db) {
        QString error;
        listing = PlaceListing::read(db, error);
    });
    ASSERT_TRUE(listing);
    for (const QString &query : queries)
        EXPECT_EQ(listing->matching(query), restaurants.searchIds(query)) << query.toStdString();
}

// Catches: the bit-parallel distance used for listings disagreeing with the plain matrix, for
// Latin-1 and other characters, repeated letters, texts over 64 characters and scalars beyond
// the first plane.
TEST(Search, ListingDistanceAgreesWithTheMatrix)
{
    const QStringList alphabet = {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("é"), QStringLiteral("Ñ"),
                                  QStringLiteral("ж"), QStringLiteral("🍷"), QStringLiteral(" ")};
    std::mt19937 random(5);
    const auto word = [&](int longest) {
        QString text;
        const int length = 1 + int(random() % unsigned(longest));
        for (int i = 0; i < length; ++i)
            text += alphabet.at(int(random() % unsigned(alphabet.size())));
        return text;
    };
    for (int round = 0; round < 2000; ++round) {
        const QString text = word(round % 50 == 0 ? 80 : 7);
        const QString name = word(30);
        EXPECT_EQ(EditDistanceFrom(text).to(name), editDistance(text, name))
            << text.toStdString() << " / " << name.toStdString();
    }
}

// Catches: the packed sort keys ordering names that share long beginnings (past the packed
// characters too), names that are the beginning of others, characters either side of the
// Latin-1 edge (þ, ÿ, Ā) or beyond the first plane otherwise than a plain comparison of the whole
// names would; and equal names not kept in id order.
TEST(Search, ListingOrderIsTheOrderOfWholeNames)
{
    const QStringList parts = {QStringLiteral("la "), QStringLiteral("a"), QStringLiteral("é"),
                               QStringLiteral("🍷"), QStringLiteral("\uffef"), QStringLiteral("Z"), QStringLiteral("1"),
                               QStringLiteral("\u00fe"), QStringLiteral("\u00ff"), QStringLiteral("\u0100")};
    std::mt19937 random(11);
    CatalogueFixture fixture = searchFixture();
    fixture.places.clear();
    for (int id = 1; id <= 400; ++id) {
        // Most names share their first fifteen characters, some are shorter than that, and the
        // rest begin with any character (their sections).
        QString name = id % 10 == 0 || id % 3 == 0 ? QString() : QStringLiteral("restaurante la ");
        for (int length = 1 + int(random() % 12); length > 0; --length)
            name += parts.at(int(random() % unsigned(parts.size())));
        fixture.places.append({id, name, name, 10, 2, 0, QStringLiteral("Obispo"), std::nullopt});
    }
    TestHome home;
    home.addCatalogue(fixture, QStringLiteral("velmora-20170101.db"));
    Restaurants restaurants(home.environment());
    QSet<int> all;
    QList<int> expected;
    for (const auto &place : fixture.places) {
        all.insert(place.id);
        expected.append(place.id);
    }
    std::stable_sort(expected.begin(), expected.end(), [&](int a, int b) {
        return QString::compare(fixture.places.at(a - 1).search_name, fixture.places.at(b - 1).search_name) < 0;
    });
    const QList<SortedEntry> listed = restaurants.sortedEntries(all, QString());
    EXPECT_EQ(idsOf(listed), expected);
    // Each in the section of its first character, upper-cased (a pair of surrogates is one).
    for (const SortedEntry &entry : listed) {
        const QString name = fixture.places.at(entry.id - 1).search_name;
        EXPECT_EQ(entry.letter, name.left(name.at(0).isHighSurrogate() ? 2 : 1).toUpper()) << name.toStdString();
    }
}

// Catches a listing kept for the next start that lists otherwise than the one read from the
// catalogue (order, sections, free text in names and addresses), one taken for another
// catalogue, a damaged or cut file taken at all, and one saved without its addresses.
TEST(Search, AKeptListingListsAsTheOneRead)
{
    TestHome home;
    CatalogueFixture fixture = searchFixture();
    fixture.places.append({9, QStringLiteral("🍷 Vinos"), QStringLiteral("🍷 vinos"), 10, 2, 0, QStringLiteral("Calle Ñandú 3"), std::nullopt});
    home.addCatalogue(fixture, QStringLiteral("velmora-20170101.db"));
    Restaurants restaurants(home.environment());
    const auto readListing = [&] {
        std::shared_ptr<const PlaceListing> listing;
        restaurants.dbq()->inDatabase([&](Database &db) {
            QString error;
            listing = PlaceListing::read(db, error);
        });
        return listing;
    };
    const std::shared_ptr<const PlaceListing> listing = readListing();
    ASSERT_TRUE(listing);
    const QString file = home.caches() + QStringLiteral("/kept.bin");
    ASSERT_TRUE(QDir().mkpath(home.caches()));
    ASSERT_TRUE(listing->save(file, "catalogue A"));
    const std::shared_ptr<const PlaceListing> kept = PlaceListing::load(file, "catalogue A");
    ASSERT_TRUE(kept);
    QSet<int> all;
    for (const auto &place : fixture.places)
        all.insert(place.id);
    for (const QString &text : {QString(), QStringLiteral("b"), QStringLiteral("medio"), QStringLiteral("🍷"), QStringLiteral("xq")})
        EXPECT_EQ(kept->sorted(all, text), listing->sorted(all, text)) << text.toStdString();
    for (const QString &text : {QStringLiteral("bode"), QStringLiteral("obispo"), QStringLiteral("nandu"), QStringLiteral("empedrado 20")})
        EXPECT_EQ(kept->matching(text), listing->matching(text)) << text.toStdString();
    // A list's letters outlive the listing it came from: a screen keeps its sections across a
    // reload that lets the old listing go (the sanitizers' run reads freed memory here).
    const QList<SortedEntry> outliving = PlaceListing::load(file, "catalogue A")->sorted(all, QString());
    EXPECT_EQ(outliving, listing->sorted(all, QString()));

    EXPECT_FALSE(PlaceListing::load(file, "catalogue B"));
    QFile stored(file);
    ASSERT_TRUE(stored.open(QIODevice::ReadOnly));
    const QByteArray bytes = stored.readAll();
    stored.close();
    const auto loadsFrom = [&](const QByteArray &content) {
        QFile damaged(file);
        EXPECT_TRUE(damaged.open(QIODevice::WriteOnly | QIODevice::Truncate));
        damaged.write(content);
        damaged.close();
        return bool(PlaceListing::load(file, "catalogue A"));
    };
    for (const qsizetype length : {qsizetype(0), qsizetype(3), qsizetype(9), bytes.size() / 2, bytes.size() - 1})
        EXPECT_FALSE(loadsFrom(bytes.left(length))) << "cut at " << length;
    EXPECT_FALSE(loadsFrom(bytes + '\0'));
    for (qsizetype at = 0; at < bytes.size(); at += 1 + bytes.size() / 60) {
        QByteArray flipped = bytes;
        flipped[at] = char(flipped[at] ^ 0x10);
        EXPECT_FALSE(loadsFrom(flipped)) << "byte " << at;
    }
    EXPECT_TRUE(loadsFrom(bytes));

    // Folding lets the addresses go: a save after it would keep a listing that finds none.
    const std::shared_ptr<const PlaceListing> folded = readListing();
    folded->fold();
    EXPECT_FALSE(folded->save(file, "catalogue A"));
}

// Catches a start taking the listing kept for an earlier catalogue of the same name, and the
// kept listing never being taken (each start then reads the whole catalogue again).
TEST(Search, AStartTakesTheListingKeptForItsCatalogueAlone)
{
    TestHome home;
    CatalogueFixture first = searchFixture();
    home.addCatalogue(first, QStringLiteral("velmora-20170101.db"));
    QSet<int> all;
    for (const auto &place : first.places)
        all.insert(place.id);
    const auto listedAtStart = [&](int *keyedConnections) {
        const int before = Database::keyedConnectionCount();
        Restaurants restaurants(home.environment());
        const QList<int> listed = idsOf(restaurants.sortedEntries(all, QString()));
        restaurants.waitForSearchIndex();
        if (keyedConnections)
            *keyedConnections = Database::keyedConnectionCount() - before;
        return listed;
    };
    const QList<int> expected = {7, 8, 4, 2, 1, 3, 5};
    EXPECT_EQ(listedAtStart(nullptr), expected);
    ASSERT_TRUE(QFileInfo::exists(home.caches() + QStringLiteral("/listing.bin")));
    int keptStart = 0;
    EXPECT_EQ(listedAtStart(&keptStart), expected);
    ASSERT_TRUE(QFile::remove(home.caches() + QStringLiteral("/listing.bin")));
    int readStart = 0;
    EXPECT_EQ(listedAtStart(&readStart), expected);
    EXPECT_EQ(readStart - keptStart, 1) << "the kept listing saves reading the catalogue once";

    // The same file name, other places in it: a newer export copied over the old one.
    CatalogueFixture second = first;
    second.places[7].search_name = QStringLiteral("zz bodega vieja");
    home.addCatalogue(second, QStringLiteral("velmora-20170101.db"));
    EXPECT_EQ(listedAtStart(nullptr), (QList<int>{7, 4, 2, 1, 3, 5, 8}));
}

// Catches: a name holding the typed text in another case not put first, a character taken for
// another by the names' letter masks (accented letters, ñ, Cyrillic, digits), and one typed
// letter ordered otherwise than several: within its section each name stands by its distance
// to the text, names holding it first, then as listed without text.
TEST(Search, ListingWithTextPutsTheClosestNamesFirst)
{
    const QStringList alphabet = {QStringLiteral("a"), QStringLiteral("b"), QStringLiteral("é"), QStringLiteral("É"),
                                  QStringLiteral("ñ"), QStringLiteral("Ñ"), QStringLiteral("ü"), QStringLiteral("ж"),
                                  QStringLiteral("ё"), QStringLiteral("1"), QStringLiteral("Z"), QStringLiteral(" ")};
    std::mt19937 random(3);
    const auto word = [&](int longest) {
        QString text;
        for (int length = 1 + int(random() % unsigned(longest)); length > 0; --length)
            text += alphabet.at(int(random() % unsigned(alphabet.size())));
        return text;
    };
    CatalogueFixture fixture = searchFixture();
    fixture.places.clear();
    for (int id = 1; id <= 300; ++id) {
        const QString name = word(9);
        fixture.places.append({id, name, name.toLower(), 10, 2, 0, QStringLiteral("Obispo"), std::nullopt});
    }
    TestHome home;
    home.addCatalogue(fixture, QStringLiteral("velmora-20170101.db"));
    Restaurants restaurants(home.environment());
    QSet<int> all;
    for (const auto &place : fixture.places)
        all.insert(place.id);
    const QList<SortedEntry> plain = restaurants.sortedEntries(all, QString());
    QStringList texts = alphabet;
    for (int i = 0; i < 40; ++i)
        texts.append(word(3));
    for (const QString &text : texts) {
        const auto distanceTo = [&](int id) {
            const QString name = fixture.places.at(id - 1).name;
            return name.toLower().contains(text.toLower()) ? 0 : editDistance(text, name);
        };
        QList<SortedEntry> expected = plain;
        std::stable_sort(expected.begin(), expected.end(), [&](const SortedEntry &a, const SortedEntry &b) {
            return std::pair(a.letter, distanceTo(a.id)) < std::pair(b.letter, distanceTo(b.id));
        });
        EXPECT_EQ(idsOf(restaurants.sortedEntries(all, text)), idsOf(expected)) << text.toStdString();
    }
}

// Catches: a later group of rows of a place not replacing an earlier one, a place missing from a
// newer catalogue losing the cuisines an older one gave it, and duplicate rows counted twice.
TEST(Search, PlaceCuisinesGroupsAndOverlays)
{
    PlaceCuisines older;
    for (const auto &[place, cuisine] : std::vector<std::pair<int, int>>{{5, 1}, {7, 2}, {9, 4}})
        older.add(place, cuisine);
    older.finish();
    PlaceCuisines newer;
    for (const auto &[place, cuisine] : std::vector<std::pair<int, int>>{{7, 3}, {7, 3}, {2, 8}, {7, 6}, {7, 1}})
        newer.add(place, cuisine);
    newer.finish();
    EXPECT_EQ(newer.of(7), (QList<int>{1, 6})) << "the later group of 7 replaces the earlier";
    const PlaceCuisines merged = newer.overlaying(older);
    EXPECT_EQ(merged.size(), 4);
    EXPECT_EQ(merged.of(2), QList<int>{8});
    EXPECT_EQ(merged.of(5), QList<int>{1});
    EXPECT_EQ(merged.of(7), (QList<int>{1, 6}));
    EXPECT_EQ(merged.of(9), QList<int>{4});
    EXPECT_TRUE(merged.of(3).isEmpty());
    EXPECT_TRUE(merged.sharesAny(7, {6, 40}));
    EXPECT_FALSE(merged.sharesAny(7, {3}));
    EXPECT_FALSE(merged.sharesAny(3, {1}));
}

// Catches: the search screen's keystroke, answered from letter pairs and bits of the listing,
// listing other places or another order than the index, the filters and the sort give one after
// another: every one- and two-letter text, accents, signs and longer words, with and without
// the closed places, in a province of a generated catalogue with a few awkward names added.
TEST(Search, TheKeystrokeListsWhatTheIndexFiltersAndSortList)
{
    CatalogueFixture fixture = CatalogueFixture::generated(1200, 11);
    const int municipality = fixture.places.first().county_id;
    const auto add = [&](int id, const QString &name, const QString &address) {
        fixture.places.append({id, name, name.toLower(), municipality, 2, 0, address, std::nullopt});
    };
    add(90001, QStringLiteral("CAFÉ  Ñandú\tdel Mar"), QStringLiteral("Malecón y 23"));
    add(90002, QStringLiteral("Casa-Pepe's O'Reilly"), QStringLiteral("Calle O'Reilly 304, esq. Aguiar"));
    add(90003, QStringLiteral("Ca"), QStringLiteral("5ta Avenida"));
    TestHome home;
    home.addCatalogue(fixture, QStringLiteral("velmora-20170101.db"));
    Restaurants restaurants(home.environment());
    restaurants.waitForSearchIndex();
    ASSERT_TRUE(restaurants.ftsQueue());
    Filters filters;
    for (const auto &province : restaurants.provinces())
        if (province->municipalityIds().contains(municipality))
            filters.municipalities = province->municipalityIds();
    ASSERT_FALSE(filters.municipalities.isEmpty());

    QStringList texts = {QString(), QStringLiteral("Á"), QStringLiteral("ñ"), QStringLiteral("É"), QStringLiteral("calle"),
                         QStringLiteral("cal"), QStringLiteral("bode"), QStringLiteral("la g"), QStringLiteral("cafe mar"),
                         QStringLiteral("o'rei"), QStringLiteral("-"), QStringLiteral("  "), QStringLiteral("5ta"),
                         QStringLiteral("reilly"), QStringLiteral("zzz")};
    const QString letters = QStringLiteral("abcdefghijklmnopqrstuvwxyz0123456789ñ");
    for (const QChar first : letters) {
        texts.append(first);
        for (const QChar second : QStringLiteral("aeiolnrs2"))
            texts.append(QString(first) + second);
    }
    int listedSome = 0;
    for (const bool hideClosed : {false, true}) {
        const QSet<int> passing = restaurants.filteredIds(filters, hideClosed);
        for (const QString &text : texts) {
            QSet<int> ids = passing;
            if (!text.isEmpty())
                ids.intersect(restaurants.searchIds(text));
            const QList<SortedEntry> expected = restaurants.sortedEntries(ids, text);
            EXPECT_EQ(restaurants.searchListing(filters, hideClosed, text), expected) << text.toStdString();
            listedSome += !expected.isEmpty();
        }
    }
    EXPECT_GT(listedSome, 150) << "the texts list places, not only empty lists";
}

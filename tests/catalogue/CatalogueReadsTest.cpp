#include "catalogue/CatalogueDates.h"
#include "fixtures/TestHome.h"
#include "platform/Shuffle.h"


#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {
QString today(int daysFromNow = 0)
{
    return CatalogueDates::formatDashed(QDate::currentDate().addDays(daysFromNow));
}

// The small catalogue with pictures, a menu, campaigns and the extended place columns filled.
CatalogueFixture richFixture()
{
    CatalogueFixture f = CatalogueFixture::small();
    for (int id = 1; id <= 12; ++id)
        f.sql << QStringLiteral("INSERT INTO gallery VALUES(%1, 100, CAST('pic-%1' AS BLOB), 'foto %1', 'photo %1')").arg(id);
    f.sql << QStringLiteral("INSERT INTO restaurants_profiles VALUES(100, CAST('profile-100' AS BLOB))")
          << QStringLiteral("UPDATE restaurants SET horario = '  12:00 a 23:00\n', horario_en = 'noon to 11 pm',"
                            " description = 'Mojitos', description_en = 'Mojitos and more', latitud = 23.14,"
                            " longitud = -82.35, email = 'a@x.cu, b@x.cu,,c@x.cu', rest_group_id = 1,"
                            " profile_url = 'https://bodeguita.example', has_menu = 1, has_gallery = 1 WHERE id = 100")
          << QStringLiteral("UPDATE restaurants SET latitud = NULL, longitud = -82.0, oof_reason = 'Obras',"
                            " oof_reason_en = 'Works' WHERE id = 102")
          << QStringLiteral("INSERT INTO restaurant_groups VALUES(1, 'Grupo Habana', 'Havana Group')")
          << QStringLiteral("INSERT INTO service_types VALUES(1, 'Delivery', 'Delivery'), (2, 'Reservas', NULL),"
                            " (3, 'Terraza', 'Terrace')")
          << QStringLiteral("INSERT INTO restaurants_service_types VALUES(100, 3), (100, 2), (100, 1)")
          << QStringLiteral("INSERT INTO menu VALUES(1, 100, 'Carta vieja', 'Old menu'), (2, 100, 'Carta', 'Menu')")
          << QStringLiteral("INSERT INTO menu_entries VALUES(2, 'Mojito', 'Mojito', 'Bebidas', 'Drinks', 4),"
                            " (2, 'Ropa vieja', 'Shredded beef', 'Platos', 'Mains', 12),"
                            " (2, 'Daiquirí', 'Daiquiri', 'Bebidas', 'Drinks', 3.5),"
                            " (1, 'Viejo', 'Old', 'Antes', 'Before', 1)");
    return f;
}

struct Campaign {
    int id;
    int position;
    QString validTo;
    QStringList imageLanguages;
};

// Campaign pictures are numbered campaign * 10 + n.
CatalogueFixture withCampaigns(const QList<Campaign> &campaigns)
{
    CatalogueFixture f = CatalogueFixture::small();
    for (const Campaign &c : campaigns) {
        f.sql << QStringLiteral("INSERT INTO app_campaigns VALUES(%1, 'url', 'es-%1', 'en-%1', '%2', %3)")
                     .arg(c.id).arg(c.validTo).arg(c.position);
        for (int n = 0; n < c.imageLanguages.size(); ++n)
            f.sql << QStringLiteral("INSERT INTO app_campaign_images VALUES(%1, %2, '%3', CAST('ad' AS BLOB))")
                         .arg(c.id * 10 + n).arg(c.id).arg(c.imageLanguages.at(n));
    }
    return f;
}

QList<int> campaignIds(const QList<Ad> &ads)
{
    QList<int> ids;
    for (const Ad &ad : ads)
        ids.append(ad.ad_id);
    return ids;
}
}

// Catches: an LRU instead of a FIFO, a hit moving its id, a limit off by one, and a reload that
// forgets gallery pictures or keeps campaign and promotion pictures.
TEST(CatalogueReads, PictureCachesForgetFirstInFirstOut)
{
    TestHome home;
    auto restaurants = home.openCatalogue(richFixture());
    for (int id = 1; id <= 12; ++id)
        EXPECT_EQ(restaurants->galleryImage(id), QStringLiteral("pic-%1").arg(id).toUtf8());
    const QList<int> afterTwelve = {2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    EXPECT_EQ(restaurants->galleryImageCacheFIFO(), afterTwelve);

    EXPECT_EQ(preparedStatementsDuring([&] { EXPECT_EQ(restaurants->galleryImage(5), QByteArray("pic-5")); }), 0);
    EXPECT_EQ(restaurants->galleryImageCacheFIFO(), afterTwelve);
    EXPECT_GT(preparedStatementsDuring([&] { EXPECT_EQ(restaurants->galleryImage(1), QByteArray("pic-1")); }), 0);
    EXPECT_EQ(restaurants->galleryImageCacheFIFO().first(), 3);
    EXPECT_EQ(restaurants->galleryImageCacheFIFO().last(), 1);

    // A picture that isn't there is remembered as empty.
    EXPECT_TRUE(restaurants->galleryImage(99).isEmpty());
    EXPECT_EQ(preparedStatementsDuring([&] { restaurants->galleryImage(99); }), 0);
    EXPECT_EQ(restaurants->profileImage(100), QByteArray("profile-100"));

    // The small fixture's promotion has no picture, and campaign picture 7 does not exist: both are
    // remembered as empty.
    EXPECT_TRUE(restaurants->promoImage(1).isEmpty());
    EXPECT_TRUE(restaurants->adImage(7).isEmpty());
    EXPECT_EQ(restaurants->promoImageCacheFIFO(), QList<int>{1});
    EXPECT_EQ(restaurants->adImageCacheFIFO(), QList<int>{7});
    restaurants->reload();
    EXPECT_TRUE(restaurants->promoImageCacheFIFO().isEmpty());
    EXPECT_TRUE(restaurants->adImageCacheFIFO().isEmpty());
    EXPECT_EQ(restaurants->galleryImageCacheFIFO().size(), 11);

    CatalogueFixture noPromotions = CatalogueFixture::small();
    noPromotions.omitTables = {QStringLiteral("restaurants_promoted")};
    TestHome other;
    auto bare = other.openCatalogue(noPromotions);
    EXPECT_TRUE(bare->promoImage(1).isEmpty());
    EXPECT_TRUE(bare->promoImageCacheFIFO().isEmpty()); // a failed read stores nothing
    EXPECT_TRUE(bare->promos(1).isEmpty());
}

// Catches: briefs not cached for unknown ids, a NULL name taken for a real one, and phone
// splitting that trims or keeps empty parts.
TEST(CatalogueReads, BriefsAndPhones)
{
    TestHome home;
    CatalogueFixture f = richFixture();
    f.sql << QStringLiteral("UPDATE restaurants SET phone = '78671374, 78673961,,' WHERE id = 100")
          << QStringLiteral("UPDATE restaurants SET phone = '   ' WHERE id = 101")
          << QStringLiteral("INSERT INTO restaurants(id, name, county_id) VALUES(300, NULL, 10)");
    auto restaurants = home.openCatalogue(f);

    const auto bodeguita = restaurants->brief(100);
    ASSERT_TRUE(bodeguita);
    EXPECT_EQ(bodeguita->name, QStringLiteral("La Bodeguita del Medio"));
    EXPECT_EQ(bodeguita->cuisines, (QStringList{QStringLiteral("Criolla"), QStringLiteral("Mariscos")}));
    EXPECT_TRUE(bodeguita->hasPhone);
    EXPECT_FALSE(restaurants->brief(101)->hasPhone);
    EXPECT_TRUE(restaurants->brief(102)->outOfService);

    const auto unknown = restaurants->brief(9999);
    ASSERT_TRUE(unknown);
    EXPECT_TRUE(unknown->name.isEmpty());
    EXPECT_EQ(preparedStatementsDuring([&] { restaurants->brief(9999); }), 0);
    EXPECT_FALSE(restaurants->brief(300));
    EXPECT_GT(preparedStatementsDuring([&] { EXPECT_FALSE(restaurants->brief(300)); }), 0);

    EXPECT_EQ(restaurants->phones(100), (QStringList{QStringLiteral("78671374"), QStringLiteral(" 78673961")}));
    EXPECT_EQ(restaurants->phones(101), QStringList{QStringLiteral("   ")});
    EXPECT_TRUE(restaurants->phones(101).first().trimmed().isEmpty());
    EXPECT_TRUE(restaurants->phones(9999).isEmpty());
}

// Catches: language columns chosen wrongly, untrimmed hours, a half position taken for a whole
// one, link-table order lost, unnamed ids shown, and a missing web-site column breaking the read.
TEST(CatalogueReads, PlaceRecords)
{
    TestHome home;
    auto restaurants = home.openCatalogue(richFixture(), QStringLiteral("en"));
    const auto info = restaurants->restaurantInfo(100);
    ASSERT_TRUE(info);
    EXPECT_EQ(info->priceRank, QStringLiteral("Moderate"));
    EXPECT_EQ(info->cuisines, QStringLiteral("Creole, Seafood"));
    EXPECT_EQ(info->hours, QStringLiteral("noon to 11 pm"));
    EXPECT_EQ(info->description, QStringLiteral("Mojitos and more"));
    EXPECT_TRUE(info->hasMenu && info->hasGallery && info->hasPhone);
    ASSERT_TRUE(info->location);
    EXPECT_DOUBLE_EQ(info->location->latitude, 23.14);
    const auto closed = restaurants->restaurantInfo(102);
    EXPECT_FALSE(closed->location);
    EXPECT_TRUE(closed->outOfService);
    EXPECT_EQ(closed->outOfServiceReason, QStringLiteral("Works"));
    EXPECT_EQ(restaurants->restaurantInfo(200)->offers, 1);
    EXPECT_FALSE(restaurants->restaurantInfo(9999));

    restaurants->setLanguage(QStringLiteral("es"));
    EXPECT_EQ(restaurants->restaurantInfo(100)->hours, QStringLiteral("12:00 a 23:00"));
    const MoreInfo more = restaurants->moreInfo(100);
    EXPECT_EQ(more.emails, (QStringList{QStringLiteral("a@x.cu"), QStringLiteral("b@x.cu"), QStringLiteral("c@x.cu")}));
    EXPECT_EQ(more.website, QStringLiteral("https://bodeguita.example"));
    EXPECT_EQ(more.rest_group, QStringLiteral("Grupo Habana"));
    EXPECT_EQ(more.service_types, (QStringList{QStringLiteral("Terraza"), QStringLiteral("Reservas"), QStringLiteral("Delivery")}));
    restaurants->setLanguage(QStringLiteral("en"));
    EXPECT_EQ(restaurants->moreInfo(100).service_types, (QStringList{QStringLiteral("Terrace"), QStringLiteral("Delivery")}));
    EXPECT_EQ(restaurants->galleryImageIds(100).size(), 12);
    EXPECT_EQ(restaurants->galleryImageCaption(3), QStringLiteral("photo 3"));
    EXPECT_EQ(restaurants->subscriptionPhoneNumber(), QStringLiteral("8888"));

    CatalogueFixture older = CatalogueFixture::small();
    older.withProfileUrl = false;
    older.omitTables = {QStringLiteral("offers")};
    older.phoneNumber.reset();
    TestHome other;
    auto plain = other.openCatalogue(older);
    EXPECT_TRUE(plain->moreInfo(100).website.isEmpty());
    EXPECT_EQ(plain->moreInfo(100).name, QStringLiteral("La Bodeguita del Medio"));
    EXPECT_EQ(plain->restaurantInfo(200)->offers, 0);
    EXPECT_TRUE(plain->subscriptionPhoneNumber().isEmpty());
}

// Catches: a province without offers still querying, the province filter applied to a single
// place, and offers out of place order.
TEST(CatalogueReads, OffersFollowTheProvinceFlag)
{
    TestHome home;
    CatalogueFixture f = CatalogueFixture::small();
    f.offerPlaces = {200, 101, 100};
    f.sql << QStringLiteral("UPDATE offers SET valid_from = 'soon' WHERE restaurant_id = 101");
    auto restaurants = home.openCatalogue(f);

    QList<int> capital;
    for (const Oferta &offer : restaurants->offers(1))
        capital.append(offer.rid);
    EXPECT_EQ(capital, (QList<int>{100, 101}));
    const QList<Oferta> matanzas = restaurants->offers(2);
    ASSERT_EQ(matanzas.size(), 1);
    EXPECT_EQ(matanzas.first().rest_name, QStringLiteral("Mansión Xanadú"));
    EXPECT_EQ(matanzas.first().name, QStringLiteral("Oferta"));
    EXPECT_EQ(matanzas.first().valid_to.date(), QDate(2030, 12, 31));
    EXPECT_LE(qAbs(restaurants->offers(1, 101).first().valid_from.secsTo(QDateTime::currentDateTime())), 5);

    // Place 200 is in Matanzas: asked by id, it answers whatever province is named.
    ASSERT_EQ(restaurants->offers(1, 200).size(), 1);
    EXPECT_EQ(restaurants->offers(1, 200).first().rid, 200);

    CatalogueFixture quiet = CatalogueFixture::small();
    quiet.offerPlaces = {100};
    TestHome other;
    auto noOffersInMatanzas = other.openCatalogue(quiet);
    EXPECT_EQ(preparedStatementsDuring([&] { EXPECT_TRUE(noOffersInMatanzas->offers(2).isEmpty()); }), 0);
    EXPECT_TRUE(noOffersInMatanzas->offers(2, 100).isEmpty()); // the province's flag still rules
}

// Catches: sections split per row instead of per category, the first menu winning, a NULL
// category crashing the read, and English columns not followed.
TEST(CatalogueReads, MenuSections)
{
    TestHome home;
    CatalogueFixture f = richFixture();
    f.sql << QStringLiteral("INSERT INTO menu VALUES(3, 101, 'Rota', 'Broken')")
          << QStringLiteral("INSERT INTO menu_entries VALUES(3, 'Plato', 'Dish', NULL, NULL, 5)");
    auto restaurants = home.openCatalogue(f);
    const auto menu = restaurants->menu(100);
    ASSERT_TRUE(menu);
    EXPECT_EQ(menu->desc, QStringLiteral("Carta"));
    ASSERT_EQ(menu->sections.size(), 2);
    EXPECT_EQ(menu->sections.at(0).name, QStringLiteral("Bebidas"));
    ASSERT_EQ(menu->sections.at(0).entries.size(), 2);
    EXPECT_EQ(menu->sections.at(0).entries.at(0).first, QStringLiteral("Daiquirí")); // by price
    EXPECT_EQ(menu->sections.at(1).entries.at(0).second, 12);
    EXPECT_FALSE(restaurants->menu(101)); // damaged: no category
    EXPECT_FALSE(restaurants->menu(200)); // no menu at all

    restaurants->setLanguage(QStringLiteral("en"));
    EXPECT_EQ(restaurants->menu(100)->sections.at(1).name, QStringLiteral("Mains"));
}

// Catches: campaigns out of position order, a campaign shown twice, picture languages not
// filtered, a campaign valid today dropped, and the action value following the wrong rule.
TEST(CatalogueReads, AdsOnePicturePerCampaign)
{
    TestHome home;
    auto restaurants = home.openCatalogue(withCampaigns({
        {1, 3, today(), {QStringLiteral("es"), QStringLiteral("any"), QStringLiteral("es")}},
        {2, 1, today(30), {QStringLiteral("en")}},
        {3, 2, today(-1), {QStringLiteral("any")}},
        {4, 4, today(2), {QStringLiteral("fr"), QStringLiteral("any")}},
    }));
    RandomSource::seed(7);
    EXPECT_EQ(campaignIds(restaurants->ads()), (QList<int>{1, 4}));
    for (const Ad &ad : restaurants->ads())
        EXPECT_EQ(ad.image_id / 10, ad.ad_id);
    EXPECT_EQ(restaurants->ads().first().value, QStringLiteral("es-1"));

    restaurants->setLanguage(QStringLiteral("en"));
    EXPECT_EQ(campaignIds(restaurants->ads()), (QList<int>{2, 1, 4}));
    EXPECT_EQ(restaurants->ads().first().value, QStringLiteral("en-2"));

    restaurants->setLanguage(QStringLiteral("fr"));
    const QList<Ad> french = restaurants->ads();
    EXPECT_EQ(campaignIds(french), (QList<int>{1, 4}));
    EXPECT_EQ(french.first().image_id, 11); // only the "any" picture of campaign 1
    EXPECT_EQ(french.first().value, QStringLiteral("es-1"));

    // Every picture of a campaign gets its turn over many draws.
    restaurants->setLanguage(QStringLiteral("es"));
    QSet<int> pictures;
    for (int draw = 0; draw < 60; ++draw)
        pictures.insert(restaurants->ads().first().image_id);
    EXPECT_EQ(pictures, (QSet<int>{10, 11, 12}));
    EXPECT_TRUE(restaurants->randomAd());
    RandomSource::seed(std::nullopt);
}

// Catches: a shuffle that never leaves an entry in place (Sattolo's mistake) or favours some
// orders, lists of one touched, and a seed that doesn't repeat.
TEST(CatalogueReads, ShuffleIsUniformAndSeedable)
{
    RandomSource::seed(42);
    QMap<QList<int>, int> seen;
    for (int round = 0; round < 6000; ++round) {
        QList<int> list{1, 2, 3};
        shuffle(list);
        ++seen[list];
    }
    EXPECT_EQ(seen.size(), 6);
    for (int count : seen)
        EXPECT_NEAR(count, 1000, 150);

    QList<int> single{9};
    shuffle(single);
    EXPECT_EQ(single, QList<int>{9});
    RandomSource::seed(5);
    QList<int> first{1, 2, 3, 4, 5, 6, 7, 8};
    shuffle(first);
    RandomSource::seed(5);
    QList<int> second{1, 2, 3, 4, 5, 6, 7, 8};
    shuffle(second);
    EXPECT_EQ(first, second);
    RandomSource::seed(std::nullopt);
}

// Catches: cache check-and-store races between the list's background queue and the main thread
// (a picture stored twice breaks the FIFO; a torn map crashes). Run under ThreadSanitizer too.
TEST(CatalogueReads, CachesHoldUpAcrossThreads)
{
    TestHome home;
    CatalogueFixture f = CatalogueFixture::generated(400);
    for (int id = 1; id <= 40; ++id)
        f.sql << QStringLiteral("INSERT INTO gallery VALUES(%1, 1000, CAST('pic-%1' AS BLOB), NULL, NULL)").arg(id);
    auto restaurants = home.openCatalogue(f);
    std::atomic<int> wrong{0};
    // Plain threads, so ThreadSanitizer sees every hand-over (Qt's own pool syncs out of its sight).
    std::vector<std::thread> workers;
    for (int worker = 0; worker < 4; ++worker)
        workers.emplace_back([&, worker] {
            for (int round = 0; round < 300; ++round) {
                const int place = 1000 + (round * 7 + worker) % 400;
                const auto brief = restaurants->brief(place);
                if (!brief || brief->id != place || brief->name.isEmpty())
                    ++wrong;
                const int picture = 1 + (round + worker * 3) % 40;
                if (restaurants->galleryImage(picture) != QStringLiteral("pic-%1").arg(picture).toUtf8())
                    ++wrong;
            }
        });
    for (std::thread &worker : workers)
        worker.join();
    EXPECT_EQ(wrong.load(), 0);
    const QList<int> fifo = restaurants->galleryImageCacheFIFO();
    EXPECT_EQ(fifo.size(), 11);
    EXPECT_EQ(QSet<int>(fifo.begin(), fifo.end()).size(), 11);
}

// Catches: any read touching a catalogue that isn't there.
TEST(CatalogueReads, NoCatalogueAnswersEmptyForms)
{
    TestHome home;
    Restaurants restaurants(home.environment());
    EXPECT_FALSE(restaurants.brief(1));
    EXPECT_FALSE(restaurants.restaurantInfo(1));
    EXPECT_FALSE(restaurants.menu(1));
    EXPECT_FALSE(restaurants.randomAd());
    EXPECT_TRUE(restaurants.moreInfo(1).name.isEmpty());
    EXPECT_TRUE(restaurants.galleryImage(1).isEmpty());
    EXPECT_TRUE(restaurants.galleryImageCacheFIFO().isEmpty());
    EXPECT_TRUE(restaurants.allLocations().isEmpty());
    EXPECT_TRUE(restaurants.phones(1).isEmpty());
    EXPECT_TRUE(restaurants.offers(1).isEmpty());
}

// Catches: promotions of another province (or of places of no province) being shown, promotions
// lost or repeated by the shuffle, and positions read from the wrong columns or kept for places
// without both coordinates.
TEST(CatalogueReads, PromotionsAndLocationsWithData)
{
    TestHome home;
    CatalogueFixture fixture = CatalogueFixture::small();
    fixture.promotedPlaces = {100, 101, 200, 100, 999};
    fixture.sql = {QStringLiteral("UPDATE restaurants SET latitud = 23.1357, longitud = -82.3514 WHERE id = 100"),
                   QStringLiteral("UPDATE restaurants SET latitud = 23.1401, longitud = NULL WHERE id = 101"),
                   QStringLiteral("UPDATE restaurants SET latitud = 23.1871, longitud = -81.2390 WHERE id = 200")};
    auto restaurants = home.openCatalogue(fixture);

    QList<std::pair<int, int>> havana;
    for (const Promo &promo : restaurants->promos(1))
        havana.append({promo.promo_id, promo.rid});
    std::sort(havana.begin(), havana.end());
    EXPECT_EQ(havana, (QList<std::pair<int, int>>{{1, 100}, {2, 101}, {4, 100}}));
    const QList<Promo> matanzas = restaurants->promos(2);
    ASSERT_EQ(matanzas.size(), 1);
    EXPECT_EQ(matanzas.first().rid, 200);
    EXPECT_TRUE(restaurants->promos(77).isEmpty());

    QList<PlaceLocation> locations = restaurants->allLocations();
    std::sort(locations.begin(), locations.end(), [](const PlaceLocation &a, const PlaceLocation &b) { return a.id < b.id; });
    ASSERT_EQ(locations.size(), 2);
    EXPECT_EQ(locations.at(0).id, 100);
    EXPECT_DOUBLE_EQ(locations.at(0).latitude, 23.1357);
    EXPECT_DOUBLE_EQ(locations.at(0).longitude, -82.3514);
    EXPECT_EQ(locations.at(1).id, 200);
    EXPECT_DOUBLE_EQ(locations.at(1).longitude, -81.2390);
}

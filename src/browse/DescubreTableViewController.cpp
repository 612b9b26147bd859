#include "DescubreTableViewController.h"
#include "analytics/Events.h"

#include "presentation/AdActions.h"
#include "presentation/TipPresenter.h"
#include "placecard/PlaceCards.h"
#include "catalogue/Restaurants.h"
#include "platform/DefaultKeys.h"
#include "platform/Localize.h"
#include "platform/NotificationCenter.h"
#include "platform/Notifications.h"
#include "platform/UserDefaults.h"
#include "richtext/IconFont.h"

#include <algorithm>

DescubreTableViewController::DescubreTableViewController(Restaurants &restaurants, QObject *parent)
    : ViewController(parent)
    , m_restaurants(restaurants)
    , R({QStringLiteral("p { font-name: OpenSans; font-size: 12; } i { font-name: Velmora-Icons; font-size: 14; }b { font-name: OpenSans-Bold; }")})
{
}

void DescubreTableViewController::viewDidLoad()
{
    NotificationCenter &center = NotificationCenter::defaultCenter();
    center.addObserver(this, Localize::changeNotification, [this](const QVariant &) { reload(); });
    for (const QString &name : {Notifications::VelmoraReloadRestaurants, Notifications::RestaurantsDidReload})
        center.addObserver(this, name, [this](const QVariant &) { reloadInBackground(); });
    setTitle(qtTrId("search_discover"));
    if (readOnLoad)
        reloadInBackground();
}

QList<DescubreTableViewController::DiscoverRow> DescubreTableViewController::mix(int promoCount, int adCount)
{
    QList<DiscoverRow> rows;
    int ad = 0;
    for (int promo = 0; promo < promoCount; ++promo) {
        rows.append({DiscoverRow::Kind::promo, promo});
        if ((promo + 1) % 2 == 0 && ad < adCount)
            rows.append({DiscoverRow::Kind::ad, ad++});
    }
    while (ad < adCount)
        rows.append({DiscoverRow::Kind::ad, ad++});
    return rows;
}

double DescubreTableViewController::parallaxFactor(double offset, double frameHeight, double contentHeight)
{
    if (frameHeight >= contentHeight)
        return -0.5;
    return std::clamp(offset / (contentHeight - frameHeight), 0.0, 1.0) - 0.5;
}

DescubreTableViewController::Feed DescubreTableViewController::readFeed(Restaurants &restaurants, int province)
{
    Feed feed;
    // The promotions come shuffled from the catalogue: the order changes from one load to the next.
    feed.promos = restaurants.promos(province);
    feed.ads = restaurants.ads();
    for (const Promo &promo : feed.promos)
        feed.briefs.append(restaurants.brief(promo.rid));
    return feed;
}

void DescubreTableViewController::reload()
{
    m_reads.supersede();
    showFeed(readFeed(m_restaurants, UserDefaults::standard().integerForKey(DefaultKeys::province)));
}

void DescubreTableViewController::reloadInBackground()
{
    m_reads.start(
        this, [restaurants = &m_restaurants, province = UserDefaults::standard().integerForKey(DefaultKeys::province)] {
            return readFeed(*restaurants, province);
        },
        [this](const Feed &feed) { showFeed(feed); });
}

void DescubreTableViewController::showFeed(const Feed &feed)
{
    setTitle(qtTrId("search_discover"));
    m_promos = feed.promos;
    m_ads = feed.ads;
    m_rows = mix(int(m_promos.size()), int(m_ads.size()));
    m_items.clear();
    for (const DiscoverRow &row : m_rows) {
        if (row.kind == DiscoverRow::Kind::ad) {
            const Ad &ad = m_ads.at(row.index);
            m_items.append(QVariantMap{{QStringLiteral("kind"), QStringLiteral("ad")},
                                       {QStringLiteral("picture"), QStringLiteral("image://places/ad/%1").arg(ad.image_id)},
                                       {QStringLiteral("badge"), qtTrId("discover_ad_badge")}});
            continue;
        }
        const Promo &promo = m_promos.at(row.index);
        const std::optional<Brief> &brief = feed.briefs.at(row.index);
        const QString cuisine = brief && !brief->cuisines.isEmpty() ? brief->cuisines.first() : QString();
        const QString subtitle = QStringLiteral("<body><p><i>%1</i> <b><![CDATA[%2 / ]]></b><![CDATA[%3]]></p></body>")
                                     .arg(IconFont::location, cuisine, brief ? brief->address : QString());
        m_items.append(QVariantMap{{QStringLiteral("kind"), QStringLiteral("promo")},
                                   {QStringLiteral("rid"), promo.rid},
                                   {QStringLiteral("picture"), QStringLiteral("image://places/promo/%1").arg(promo.promo_id)},
                                   {QStringLiteral("name"), brief ? brief->name : QString()},
                                   {QStringLiteral("subtitle"), QVariant::fromValue(R.render(subtitle))},
                                   {QStringLiteral("spoken"), (brief ? brief->name : QString()) + QStringLiteral(". ") + cuisine},
                                   {QStringLiteral("badge"), qtTrId("discover_promo_badge")}});
    }
    emit rowsChanged();
}

void DescubreTableViewController::didSelectRow(int row)
{
    if (row < 0 || row >= m_rows.size())
        return;
    const DiscoverRow &tapped = m_rows.at(row);
    if (tapped.kind == DiscoverRow::Kind::promo) {
        Events::tappedPromo();
        showPlaceCard(navigationController(), m_restaurants, m_promos.at(tapped.index).rid, this, true);
        return;
    }
    // The feed reports an ad by its ad_id; the card and more-info screens by its picture's id.
    Events::adAction(Events::AdPlacement::DiscoverFeed, m_ads.at(tapped.index).ad_id);
    AdActions::performAdAction(m_ads.at(tapped.index), [this](const QString &tip) {
                emit tipRequested(tip);
                if (TipPresenter *presenter = TipPresenter::shared())
                    presenter->showTip(tip);
            });
}

void DescubreTableViewController::rowConfigured(int row)
{
    if (row >= 0 && row < m_rows.size() && m_rows.at(row).kind == DiscoverRow::Kind::ad)
        Events::adShown(Events::AdPlacement::DiscoverFeed, m_ads.at(m_rows.at(row).index).ad_id);
}

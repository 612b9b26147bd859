#include "OfertasTableViewController.h"
#include "analytics/Events.h"
#include "browse/PlaceCardTexts.h"

#include "placecard/PlaceCards.h"
#include "catalogue/Restaurants.h"
#include "platform/DefaultKeys.h"
#include "platform/Localize.h"
#include "platform/NotificationCenter.h"
#include "platform/Notifications.h"
#include "platform/UserDefaults.h"
#include "platform/Dispatch.h"
#include "presentation/Globals.h"
#include "platform/OperationQueue.h"
#include "presentation/BarButtonItem.h"
#include "presentation/NavigationController.h"
#include "richtext/IconFont.h"

#include <QPointer>

#include <algorithm>
#include <cmath>

OfertasTableViewController::OfertasTableViewController(Restaurants &restaurants, QObject *parent)
    : ViewController(parent)
    , m_restaurants(restaurants)
    , R({QStringLiteral("p { font-name: OpenSans; font-size: 12; }"), QStringLiteral("b { font-name: OpenSans-Bold; }"),
         QStringLiteral("price-notice { font-name: OpenSans-BoldItalic; font-size: 13; color: #b2a489; }"),
         QStringLiteral("back-icon { font-name: Velmora-Icons; font-size: 18; color: #ffffff; baseline-offset: -1.5; }"),
         QStringLiteral("back-text { font-name: OpenSans-Semibold; font-size: 11; color: #ffffff; }")})
{
}

OfertasTableViewController::~OfertasTableViewController() = default;

void OfertasTableViewController::viewDidLoad()
{
    if (restaurantMode())
        showBackButton();
    NotificationCenter &center = NotificationCenter::defaultCenter();
    center.addObserver(this, Localize::changeNotification, [this](const QVariant &) {
        setTitle(qtTrId(restaurantMode() ? "offers_title" : "search_offers"));
        reloadOffers();
    });
    const auto reloadInBackground = [this](const QVariant &) { reloadOffersInBackground(); };
    center.addObserver(this, Notifications::VelmoraReloadRestaurants, reloadInBackground);
    center.addObserver(this, Notifications::RestaurantsDidReload, reloadInBackground);
    setTitle(qtTrId(restaurantMode() ? "offers_title" : "search_offers"));
    if (readOnLoad)
        reloadOffersInBackground();
}

int OfertasTableViewController::province() const { return UserDefaults::standard().integerForKey(DefaultKeys::province); }

OfertasTableViewController::Sections OfertasTableViewController::validSections(QList<Oferta> offers, const QDateTime &now)
{
    std::stable_sort(offers.begin(), offers.end(), [](const Oferta &a, const Oferta &b) { return a.rid < b.rid; });
    Sections sections;
    QList<Oferta> group;
    std::optional<int> previous;
    for (const Oferta &offer : offers) {
        // Shown from the first instant of valid_from to the instant of valid_to.
        if ((offer.valid_from.isValid() && offer.valid_from > now) || (offer.valid_to.isValid() && offer.valid_to < now))
            continue;
        // Groups change on the place's id, so two places of the same name stay two sections.
        if (previous && *previous != offer.rid && !group.isEmpty()) {
            sections.append({group.last().rest_name, group});
            group.clear();
        }
        group.append(offer);
        previous = offer.rid;
    }
    if (!group.isEmpty())
        sections.append({group.last().rest_name, group});
    return sections;
}

void OfertasTableViewController::reloadOffers()
{
    m_reads.supersede();
    showOffers(validSections(m_restaurants.offers(province(), rid), QDateTime::currentDateTime()));
}

void OfertasTableViewController::reloadOffersInBackground()
{
    m_reads.start(
        this,
        [restaurants = &m_restaurants, province = province(), rid = rid] {
            return validSections(restaurants->offers(province, rid), QDateTime::currentDateTime());
        },
        [this](const Sections &sections) { showOffers(sections); });
}

std::pair<QString, QString> OfertasTableViewController::priceParts(double price)
{
    if (!(price > 0))
        return {};
    const qint64 whole = qint64(price);
    const int cents = int(std::fmod(std::round(price * 100), 100.0));
    return {QString::number(whole) + QLatin1Char('.'), QStringLiteral("%1").arg(cents, 2, 10, QLatin1Char('0'))};
}

QVariant OfertasTableViewController::offerText(int row)
{
    if (row < 0 || row >= m_rows.size())
        return {};
    auto rendered = m_renderedOffers.constFind(row);
    if (rendered == m_renderedOffers.constEnd())
        rendered = m_renderedOffers.insert(row, QVariant::fromValue(R.render(m_rows.at(row).toMap().value(QStringLiteral("markup")).toString())));
    return *rendered;
}

void OfertasTableViewController::showOffers(Sections sections)
{
    m_ofertas = std::move(sections);
    m_rows.clear();
    m_renderedOffers.clear();
    if (restaurantMode()) {
        // The place list's own card, cuisines line and all.
        const Brief brief = m_restaurants.brief(rid).value_or(Brief{});
        const PlaceCardTexts texts;
        m_rows.append(QVariantMap{{QStringLiteral("kind"), QStringLiteral("card")},
                                  {QStringLiteral("rid"), rid},
                                  {QStringLiteral("name"), brief.name},
                                  {QStringLiteral("cuisines"), texts.cuisines(brief)},
                                  {QStringLiteral("address"), brief.address},
                                  {QStringLiteral("warning"), PlaceCardTexts::warning(brief)},
                                  {QStringLiteral("picture"), PlaceCardTexts::picture(m_restaurants, rid)},
                                  {QStringLiteral("spoken"), PlaceCardTexts::spoken(brief)},
                                  {QStringLiteral("inert"), inertRestCard}});
    }
    for (const auto &[title, offers] : m_ofertas) {
        m_rows.append(QVariantMap{{QStringLiteral("kind"), QStringLiteral("header")}, {QStringLiteral("title"), title.toUpper()}});
        for (const Oferta &offer : offers) {
            const auto [whole, cents] = priceParts(offer.price);
            const QString markup = QStringLiteral("<body><p><b><![CDATA[%1]]></b> / <![CDATA[%2]]></p></body>").arg(offer.name, offer.description);
            m_rows.append(QVariantMap{{QStringLiteral("kind"), QStringLiteral("offer")},
                                      {QStringLiteral("rid"), offer.rid},
                                      {QStringLiteral("markup"), markup},
                                      {QStringLiteral("spoken"), offer.name + QStringLiteral(". ") + offer.description},
                                      {QStringLiteral("whole"), whole},
                                      {QStringLiteral("cents"), cents}});
        }
    }
    emit rowsChanged();
}

void OfertasTableViewController::didSelectRow(int row)
{
    const QVariantMap item = m_rows.value(row).toMap();
    const QString kind = item.value(QStringLiteral("kind")).toString();
    NavigationController *navigation = navigationController();
    if (!navigation)
        return;
    if (!restaurantMode() && kind == QLatin1String("offer")) {
        // The place's own offers, under its card.
        auto *place = new OfertasTableViewController(m_restaurants, parent() ? parent() : this);
        place->rid = item.value(QStringLiteral("rid")).toInt();
        navigation->pushViewController(place, true);
        Events::tappedOffer();
    } else if (restaurantMode() && kind == QLatin1String("card") && !inertRestCard) {
        showPlaceCard(navigation, m_restaurants, rid, this, true);
    }
}

void OfertasTableViewController::close() { popBack(); }

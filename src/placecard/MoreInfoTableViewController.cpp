#include "MoreInfoTableViewController.h"
#include "analytics/Events.h"

#include "catalogue/Restaurants.h"
#include "platform/Localize.h"
#include "platform/NotificationCenter.h"
#include "presentation/AdActions.h"
#include "presentation/TipPresenter.h"
#include "presentation/BarButtonItem.h"
#include "presentation/Globals.h"
#include "presentation/NavigationController.h"
#include "presentation/UrlOpener.h"
#include "richtext/IconFont.h"

MoreInfoTableViewController::MoreInfoTableViewController(Restaurants &restaurants, QObject *parent)
    : ViewController(parent)
    , m_restaurants(restaurants)
{
}

void MoreInfoTableViewController::viewDidLoad()
{
    setTitle(qtTrId("moreinfo_title"));
    showBackButton();
    NotificationCenter::defaultCenter().addObserver(this, Localize::changeNotification,
                                                    [this](const QVariant &) { setTitle(qtTrId("moreinfo_title")); });
    setupCells();
}

void MoreInfoTableViewController::setupCells()
{
    using T = MoreInfoCellType;
    m_info = m_restaurants.moreInfo(rid);
    // Chosen here, whatever the card showed: a place with pictures shows an ad on this screen.
    m_ad = m_restaurants.randomAd();
    const MoreInfo &info = *m_info;
    m_cells = {T::separator};
    if (!info.website.isEmpty())
        m_cells.append(T::website);
    if (!info.emails.isEmpty())
        m_cells.append(T::email);
    if (!info.service_types.isEmpty())
        m_cells.append(T::serviceTypes);
    if (!info.place_options.isEmpty())
        m_cells.append(T::placeOptions);
    if (!info.payment_options.isEmpty())
        m_cells.append(T::paymentOptions);
    m_cells.append(T::separator);
    if (!info.rest_group.isEmpty())
        m_cells += {T::restGroup, T::separator};
    if (m_ad)
        m_cells.append(T::advertising);

    const QString separator = QStringLiteral(", ");
    m_rows.clear();
    for (int row = 0; row < m_cells.size(); ++row) {
        const T type = m_cells.at(row);
        // A group's last row draws its line from the edge: before a separator, or at the end.
        const bool last = row + 1 == m_cells.size() || m_cells.at(row + 1) == T::separator;
        QVariantMap map{{QStringLiteral("last"), last}};
        const auto data = [&](const QString &header, const QString &text, bool link) {
            map.insert(QStringLiteral("kind"), QStringLiteral("more-info-info-cell"));
            map.insert(QStringLiteral("header"), header);
            map.insert(QStringLiteral("text"), text);
            map.insert(QStringLiteral("link"), link);
        };
        switch (type) {
        case T::website: data(qtTrId("moreinfo_website_header"), info.website, true); break;
        case T::email: data(qtTrId("moreinfo_email_header"), info.emails.join(separator), true); break;
        case T::serviceTypes: data(qtTrId("moreinfo_service_types_header"), info.service_types.join(separator), false); break;
        case T::placeOptions: data(qtTrId("moreinfo_place_options_header"), info.place_options.join(separator), false); break;
        case T::paymentOptions: data(qtTrId("moreinfo_payment_options_header"), info.payment_options.join(separator), false); break;
        case T::restGroup: data(qtTrId("moreinfo_rest_group_header"), info.rest_group, false); break;
        case T::chef:
            data(QString(), QString(), true);
            map.insert(QStringLiteral("optional"), QStringLiteral("ASOCIACIÓN CULINARIA DE VARDA"));
            break;
        case T::separator: map.insert(QStringLiteral("kind"), QStringLiteral("more-info-separator")); break;
        case T::advertising:
            map.insert(QStringLiteral("kind"), QStringLiteral("more-info-adv-cell"));
            map.insert(QStringLiteral("source"), QStringLiteral("image://places/ad/%1").arg(m_ad->image_id));
            map.insert(QStringLiteral("badge"), qtTrId("discover_ad_badge"));
            break;
        }
        m_rows.append(map);
    }
    emit rowsChanged();
}

QUrl MoreInfoTableViewController::websiteURL(const QString &website, const QString &siteBase, const QString &language)
{
    QString path = website;
    if (path.split(QLatin1Char('/')).size() == 2)
        path.replace(path.indexOf(QLatin1Char('/')), 1, QStringLiteral("/restaurant/"));
    const QUrl url(siteBase + language + QLatin1Char('/') + path + QLatin1Char('/'), QUrl::StrictMode);
    return url.isValid() ? url : QUrl();
}

QUrl MoreInfoTableViewController::emailURL(const QStringList &emails, const QString &placeName)
{
    if (emails.isEmpty())
        return QUrl();
    QString address = QStringLiteral("mailto:") + emails.first();
    // What a query may hold as it stands; everything else is percent-encoded.
    if (!placeName.isEmpty())
        address += QStringLiteral("?subject=") + QString::fromLatin1(placeName.toUtf8().toPercentEncoding("!$&'()*+,;=:@/?"));
    const QUrl url(address, QUrl::StrictMode);
    return url.isValid() ? url : QUrl();
}

void MoreInfoTableViewController::didSelectRow(int row)
{
    if (row < 0 || row >= m_cells.size() || !m_info)
        return;
    switch (m_cells.at(row)) {
    case MoreInfoCellType::website:
        if (const QUrl url = websiteURL(m_info->website, Globals::siteURL(), Localize::currentLanguage()); !url.isEmpty())
            UrlOpener::openURL(url);
        break;
    case MoreInfoCellType::email: {
        const auto brief = m_restaurants.brief(rid);
        if (const QUrl url = emailURL(m_info->emails, brief ? brief->name : QString()); !url.isEmpty())
            UrlOpener::openURL(url);
        break;
    }
    case MoreInfoCellType::advertising:
        if (m_ad) {
            Events::adAction(Events::AdPlacement::MoreInfo, m_ad->image_id);
            AdActions::performAdAction(*m_ad, [this](const QString &tip) {
                emit tipRequested(tip);
                if (TipPresenter *presenter = TipPresenter::shared())
                    presenter->showTip(tip);
            });
        }
        break;
    default: break;
    }
}

void MoreInfoTableViewController::advertisingCellBuilt()
{
    if (m_ad)
        Events::adShown(Events::AdPlacement::MoreInfo, m_ad->image_id);
}

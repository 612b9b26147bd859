#include "personal/SubscribeProvincesViewController.h"

#include "catalogue/Province.h"
#include "catalogue/Restaurants.h"
#include "personal/Subscription.h"
#include "platform/Localize.h"
#include "platform/NotificationCenter.h"
#include "platform/Notifications.h"
#include "platform/Telephony.h"

#include <QCollator>
#include <QPointer>

#include <algorithm>

SubscribeProvincesViewController::SubscribeProvincesViewController(Restaurants &restaurants, UserDefaults &defaults, QObject *parent)
    : ViewController(parent)
    , m_restaurants(restaurants)
    , m_defaults(defaults)
    , R({QStringLiteral("center { text-alignment: center; }"),
         QStringLiteral("finish { font-name: OpenSans-Light; font-size: 24; color: white; }"),
         QStringLiteral("sub { font-name: OpenSans-Light; font-size: 13; color: white; }")})
{
}

void SubscribeProvincesViewController::viewDidLoad()
{
    if (const std::optional<QSet<int>> stored = Subscription::provinces(m_defaults))
        m_currentSelection = *stored;
    NotificationCenter::defaultCenter().addObserver(this, Localize::changeNotification, [this](const QVariant &) { localize(); });
    localize();
}

void SubscribeProvincesViewController::localize()
{
    // Choices not sent yet are dropped: the list starts again from what is subscribed.
    m_provinces.clear();
    const auto provinces = m_restaurants.provinces();
    for (auto it = provinces.cbegin(); it != provinces.cend(); ++it)
        if (it.value())
            m_provinces.append({it.key(), it.value()->name, m_currentSelection.contains(it.key())});
    QCollator collator(QLocale(Localize::currentLanguage()));
    std::sort(m_provinces.begin(), m_provinces.end(),
              [&](const ProvinceEntry &a, const ProvinceEntry &b) { return collator.compare(a.name, b.name) < 0; });
    m_finishTitle = R.render(QStringLiteral("<body><center><finish>") + qtTrId("notifications_provinces_finish") + QStringLiteral("</finish>\n<sub>")
                             + qtTrId("notifications_provinces_will_send_an_sms") + QStringLiteral("</sub></center></body>"));
    emit localized();
    emit provincesChanged();
}

QString SubscribeProvincesViewController::headerText() const { return qtTrId("notifications_provinces_select_provinces"); }
QString SubscribeProvincesViewController::selectAllText() const { return qtTrId("notifications_provinces_select_all"); }

QSet<int> SubscribeProvincesViewController::selection() const
{
    QSet<int> ids;
    for (const ProvinceEntry &entry : m_provinces)
        if (entry.selected)
            ids.insert(entry.id);
    return ids;
}

QVariantList SubscribeProvincesViewController::provinceRows() const
{
    QVariantList rows;
    for (const ProvinceEntry &entry : m_provinces)
        rows.append(QVariantMap{{QStringLiteral("id"), entry.id}, {QStringLiteral("name"), entry.name}, {QStringLiteral("selected"), entry.selected}});
    return rows;
}

void SubscribeProvincesViewController::didSelectRow(int row)
{
    if (row < 0 || row >= m_provinces.size())
        return;
    m_provinces[row].selected = !m_provinces[row].selected;
    emit provincesChanged();
}

void SubscribeProvincesViewController::selectAllTouched()
{
    const bool all = std::all_of(m_provinces.cbegin(), m_provinces.cend(), [](const ProvinceEntry &entry) { return entry.selected; });
    for (ProvinceEntry &entry : m_provinces)
        entry.selected = !all;
    emit provincesChanged();
}

void SubscribeProvincesViewController::finishButtonTouched() { subscribe(selection()); }

QString SubscribeProvincesViewController::messageBody(const QString &intro, const QSet<int> &provinces)
{
    QList<int> ids(provinces.cbegin(), provinces.cend());
    std::sort(ids.begin(), ids.end());
    QStringList numbers;
    for (int id : ids)
        numbers.append(QString::number(id));
    return intro + QStringLiteral(" &&0&") + numbers.join(QLatin1Char('-'));
}

void SubscribeProvincesViewController::subscribe(const QSet<int> &provinces)
{
    m_pendingSelection = provinces;
    if (!Telephony::shared().canSendText())
        return;
    QPointer<SubscribeProvincesViewController> self(this);
    // Only a message really sent counts; a cancelled or failed one leaves everything as it was.
    MessageComposer::compose(m_restaurants.subscriptionPhoneNumber(), messageBody(qtTrId("subscribe_sms_body_intro"), provinces),
                             [self](MessageComposer::Result result) {
                                 if (self && result == MessageComposer::Result::sent)
                                     self->commitSubscription();
                             });
}

void SubscribeProvincesViewController::commitSubscription()
{
    if (m_currentSelection != m_pendingSelection) {
        m_currentSelection = m_pendingSelection;
        Subscription::setProvinces(m_defaults, m_currentSelection);
        NotificationCenter::defaultCenter().post(Notifications::VelmoraUserSubscriptionChanged);
    }
    emit provincesChanged();
    if (delegate)
        delegate->provinceSelectionDidFinish(m_currentSelection);
}

void SubscribeProvincesViewController::closeButtonTouched()
{
    if (delegate)
        delegate->provinceSelectionDidCancel();
}

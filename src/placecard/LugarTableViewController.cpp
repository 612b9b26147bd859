#include "LugarTableViewController.h"
#include "analytics/Events.h"

#include "GalleryViewController.h"
#include "SaveToMyPlacesViewController.h"
#include "presentation/AdActions.h"
#include "presentation/TipPresenter.h"
#include "PlaceCards.h"
#include "catalogue/Restaurants.h"
#include "platform/DefaultKeys.h"
#include "platform/UserDefaults.h"
#include "presentation/BarButtonItem.h"
#include "presentation/NavigationController.h"
#include "presentation/Storyboard.h"
#include "richtext/IconFont.h"
#include "BarColorPicture.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QImage>

#include <algorithm>
#include <cmath>

namespace {
const QString kind = QStringLiteral("kind");
const QString type = QStringLiteral("type");

// The rows after a group of shadowed rows have no gap of their own: the group's last row
// closes its shadow, the others keep the standard inset.
constexpr qreal defaultShadowInset = 12;
}

LugarTableViewController::LugarTableViewController(Restaurants &restaurants, UserDefaults &defaults, QObject *parent)
    : ViewController(parent)
    , m_restaurants(restaurants)
    , m_defaults(defaults)
    , R({QStringLiteral("opinion { font-name: OpenSans-Semibold; font-size: 9; }"),
         QStringLiteral("opinion-icon { font-name: Velmora-Icons; font-size: 18; }"),
         QStringLiteral("fotos { font-name: OpenSans-Semibold; font-size: 9; }"),
         QStringLiteral("fotos-icon { font-name: Velmora-Icons; font-size: 18; }"),
         QStringLiteral("back-icon { font-name: Velmora-Icons; font-size: 18; }"),
         QStringLiteral("call { font-name: OpenSans; font-size: 15; }"),
         QStringLiteral("call-icon { font-name: Velmora-Icons; font-size: 28; }"),
         QStringLiteral("comment { font-name: OpenSans; font-size: 12; }"),
         QStringLiteral("i { font-name: OpenSans-Italic; }"),
         QStringLiteral("myplaces-icon { font-name: Velmora-Icons; font-size: 23; }"),
         QStringLiteral("myplaces-text { font-name: OpenSans-Light; font-size: 18; }")})
{
}

QString LugarTableViewController::typeName(LugaresCellType cellType)
{
    static const char *const names[] = {"picture", "opinions", "infoHeader", "outOfService", "address", "prices", "cuisines",
                                        "horario", "call", "description", "comments", "gallery", "offers", "menu", "moreInfo",
                                        "separator", "notes", "giftsAndReservations", "myPlaces", "advertising"};
    return QString::fromLatin1(names[int(cellType)]);
}

QString LugarTableViewController::reuseIdentifier(LugaresCellType cellType)
{
    using T = LugaresCellType;
    switch (cellType) {
    case T::picture: return QStringLiteral("lugar-picture-cell");
    case T::opinions: return QStringLiteral("lugar-opinions-cell");
    case T::infoHeader: return QStringLiteral("lugar-info-header");
    case T::outOfService:
    case T::address:
    case T::prices:
    case T::cuisines:
    case T::horario: return QStringLiteral("lugar-detail-cell");
    case T::call: return QStringLiteral("lugar-call-cell");
    case T::description: return QStringLiteral("lugar-testimony-cell");
    case T::comments:
    case T::gallery:
    case T::offers:
    case T::menu:
    case T::moreInfo: return QStringLiteral("lugar-action-cell");
    case T::separator: return QStringLiteral("lugar-separator-cell");
    case T::notes: return QStringLiteral("lugar-notes-cell");
    case T::giftsAndReservations: return QStringLiteral("lugar-buttons-cell");
    case T::myPlaces: return QStringLiteral("lugar-myplaces-cell");
    case T::advertising: return QStringLiteral("lugar-adv-cell");
    }
    return {};
}

QString LugarTableViewController::outOfServiceReasonText(const QString &reason)
{
    const QString trimmed = reason.trimmed();
    if (trimmed.toUtf8().size() < 2)
        return qtTrId("lugar_place_out_of_service_reason_unknown");
    return qtTrId("lugar_place_out_of_service_reason").replace(QStringLiteral("{REASON}"), trimmed);
}

void LugarTableViewController::viewDidLoad()
{
    m_titleText = restInfo ? restInfo->name : QString();
    setTitle(m_titleText);
    showBackButton();
    auto *share = new BarButtonItem(QStringLiteral("share"), IconFont::share, BarButtonItem::iconFont(33), this);
    connect(share, &BarButtonItem::triggered, this, &LugarTableViewController::shareButtonTouched);
    setRightItems({share});
    // A place with pictures never shows an ad: the ad is chosen only for places without gallery.
    if (!(restInfo && restInfo->hasGallery))
        m_ad = m_restaurants.randomAd();
    setupCells();
    const QString note = restInfo ? m_defaults.stringForKey(noteKey()) : QString();
    m_noteText = note;
    m_notePlaceholderVisible = note.isEmpty();
}

void LugarTableViewController::setupCells()
{
    using T = LugaresCellType;
    m_cells.clear();
    if (!restInfo)
        return;
    const bool opinions = m_defaults.boolForKey(DefaultKeys::devEnableOpinions);
    m_cells.append(T::picture);
    if (opinions)
        m_cells.append(T::opinions);
    if (restInfo->outOfService)
        m_cells.append(T::outOfService);
    m_cells += {T::address, T::prices, T::cuisines, T::horario, T::call};
    m_cells.append(restInfo->description.isEmpty() ? T::separator : T::description);
    if (m_ad)
        m_cells.append(T::advertising);
    if (opinions)
        m_cells.append(T::comments);
    // The gallery row and the picture follow the picture ids, not the record's flag.
    m_gallery = m_restaurants.galleryImageIds(restInfo->id);
    if (!m_gallery.isEmpty()) {
        m_cells.append(T::gallery);
        auto provider = std::make_shared<RestaurantPicturesProvider>(m_restaurants);
        provider->imageIds = m_gallery;
        m_galleryProvider = std::move(provider);
    }
    if (restInfo->offers > 0)
        m_cells.append(T::offers);
    if (restInfo->hasMenu)
        m_cells.append(T::menu);
    m_cells += {T::moreInfo, T::separator, T::notes};
    if (m_defaults.boolForKey(DefaultKeys::showReservations))
        m_cells.append(T::giftsAndReservations);
    m_cells += {T::separator, T::myPlaces};

    m_rows.clear();
    for (LugaresCellType cellType : std::as_const(m_cells))
        m_rows.append(rowFor(cellType));
}

QVariantMap LugarTableViewController::rowFor(LugaresCellType cellType) const
{
    using T = LugaresCellType;
    QVariantMap row{{kind, reuseIdentifier(cellType)}, {type, typeName(cellType)}};
    const RestaurantInfo &info = *restInfo;
    const auto detail = [&](const char *subheader, const QString &text, qreal inset) {
        // Set in capitals, as small headings over a value are.
        row.insert(QStringLiteral("subheader"), qtTrId(subheader).toUpper());
        // A value the catalogue left empty reads as a dash, not as a missing line.
        row.insert(QStringLiteral("text"), text.trimmed().isEmpty() ? QStringLiteral("—") : text);
        row.insert(QStringLiteral("shadowInset"), inset);
    };
    const auto action = [&](const QString &title, const QString &count, qreal inset) {
        row.insert(QStringLiteral("title"), title);
        row.insert(QStringLiteral("count"), count);
        row.insert(QStringLiteral("shadowInset"), inset);
    };
    const auto rendered = [&](const QString &markup) {
        return QVariant::fromValue(R.render(QStringLiteral("<body>") + markup + QStringLiteral("</body>")));
    };
    switch (cellType) {
    case T::picture:
        if (!m_gallery.isEmpty()) {
            row.insert(QStringLiteral("source"), QStringLiteral("image://places/gallery/%1").arg(m_gallery.first()));
            QString text = qtTrId("lugar_cameraicon_number_of_pictures");
            text.replace(QStringLiteral("{I}"), IconFont::camera).replace(QStringLiteral("{N}"), QString::number(m_gallery.size()));
            row.insert(QStringLiteral("count"), rendered(text));
            row.insert(QStringLiteral("height"), 250);
        } else {
            row.insert(QStringLiteral("profile"), QStringLiteral("image://placecard/prof/%1").arg(info.id));
            row.insert(QStringLiteral("blur"), QStringLiteral("image://placecard/blur/%1").arg(info.id));
            row.insert(QStringLiteral("height"), 230);
        }
        break;
    case T::opinions:
        row.insert(QStringLiteral("title"), rendered(QStringLiteral("<opinion>¿Qué\nopinas tú?\n<opinion-icon>") + IconFont::reserve
                                                     + QStringLiteral("</opinion-icon></opinion>")));
        break;
    case T::infoHeader:
        row.insert(QStringLiteral("title"), qtTrId("lugar_info_header"));
        break;
    case T::outOfService:
        detail("lugar_place_out_of_service", outOfServiceReasonText(info.outOfServiceReason), defaultShadowInset);
        row.insert(QStringLiteral("icon"), IconFont::warning);
        row.insert(QStringLiteral("iconColor"), QStringLiteral("#fdad0e"));
        break;
    case T::address:
        detail("lugar_address_subheader", info.address, defaultShadowInset);
        if (info.location) {
            row.insert(QStringLiteral("icon"), IconFont::cardRight);
            row.insert(QStringLiteral("iconColor"), QStringLiteral("#79BC16"));
        }
        row.insert(QStringLiteral("selectable"), info.location.has_value());
        break;
    case T::prices: detail("lugar_avg_price_subheader", info.priceRank, defaultShadowInset); break;
    case T::cuisines: detail("lugar_cuisines_subheader", info.cuisines, defaultShadowInset); break;
    case T::horario: detail("lugar_hours_subheader", info.hours, 0); break;
    case T::call:
        row.insert(QStringLiteral("title"), qtTrId(info.hasPhone ? "lugar_make_a_call" : "lugar_no_phone_numbers"));
        row.insert(QStringLiteral("icon"), info.hasPhone ? IconFont::call : IconFont::callPlain);
        row.insert(QStringLiteral("enabled"), info.hasPhone);
        break;
    case T::description:
        row.insert(QStringLiteral("text"), rendered(QStringLiteral("<comment><![CDATA[") + info.description + QStringLiteral("]]></comment>")));
        break;
    // The opinions feature's fixed sample, shown only behind the developer switch.
    case T::comments: action(QStringLiteral("Comentarios"), QStringLiteral("17"), defaultShadowInset); break;
    case T::gallery: action(qtTrId("lugar_gallery"), QString::number(m_gallery.size()), defaultShadowInset); break;
    case T::offers: action(qtTrId("lugar_offers"), QString::number(info.offers), defaultShadowInset); break;
    case T::menu: action(qtTrId("lugar_menu"), QString(), defaultShadowInset); break;
    case T::moreInfo: action(qtTrId("lugar_moreinfo"), QString(), 0); break;
    case T::separator: break;
    case T::notes: row.insert(QStringLiteral("placeholder"), qtTrId("lugar_notes_on_RESTAURANT_NAME").replace(QStringLiteral("{RESTAURANT_NAME}"), info.name).toUpper()); break;
    case T::giftsAndReservations: row.insert(QStringLiteral("title"), qtTrId("lugar_reserve_table")); break;
    case T::myPlaces:
        row.insert(QStringLiteral("title"), rendered(QStringLiteral("<myplaces-icon>") + IconFont::myplacesThin
                                                     + QStringLiteral("</myplaces-icon><myplaces-text>\u2002") + qtTrId("lugar_add_to_my_places")
                                                     + QStringLiteral("</myplaces-text>")));
        row.insert(QStringLiteral("spoken"), qtTrId("lugar_add_to_my_places"));
        break;
    case T::advertising:
        row.insert(QStringLiteral("source"), QStringLiteral("image://places/ad/%1").arg(m_ad ? m_ad->image_id : 0));
        row.insert(QStringLiteral("badge"), qtTrId("discover_ad_badge"));
        break;
    }
    return row;
}

void LugarTableViewController::didSelectRow(int row)
{
    if (row < 0 || row >= m_cells.size() || !restInfo)
        return;
    using T = LugaresCellType;
    switch (m_cells.at(row)) {
    case T::address: performSegue(QStringLiteral("lugar-show-map")); break;
    case T::call:
    case T::giftsAndReservations: performSegue(QStringLiteral("show-phone-numbers")); break;
    case T::gallery: performSegue(QStringLiteral("show-pictures")); break;
    case T::offers: performSegue(QStringLiteral("lugar-show-offers")); break;
    case T::menu: performSegue(QStringLiteral("lugar-show-menu")); break;
    case T::moreInfo: performSegue(QStringLiteral("lugar-show-more-info")); break;
    case T::myPlaces: performSegue(QStringLiteral("show-myplaces")); break;
    case T::advertising:
        if (m_ad) {
            Events::adAction(Events::AdPlacement::PlaceCard, m_ad->image_id);
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

bool LugarTableViewController::shouldPerformSegue(const QString &identifier) const
{
    if (!restInfo)
        return false;
    if (identifier == QLatin1String("lugar-show-map"))
        return restInfo->location.has_value();
    if (identifier == QLatin1String("show-phone-numbers"))
        return restInfo->hasPhone;
    return true;
}

bool LugarTableViewController::performSegue(const QString &identifier)
{
    NavigationController *navigation = navigationController();
    if (!navigation || !shouldPerformSegue(identifier))
        return false;
    const int id = restInfo->id;
    // Pushed screens by segue: storyboard and identifier of the destination.
    static const QHash<QString, std::pair<QString, QString>> pushed = {
        {QStringLiteral("lugar-show-map"), {QStringLiteral("Lugar"), QStringLiteral("lugar-map-view-controller")}},
        {QStringLiteral("lugar-show-offers"), {QStringLiteral("Buscar"), QStringLiteral("offers-view-controller")}},
        {QStringLiteral("lugar-show-menu"), {QStringLiteral("Lugar"), QStringLiteral("menu-view-controller")}},
        {QStringLiteral("lugar-show-more-info"), {QStringLiteral("Lugar"), QStringLiteral("more-info-view-controller")}},
    };
    if (const auto destination = pushed.find(identifier); destination != pushed.end()) {
        ViewController *screen = Storyboard::instantiate(destination->first, destination->second, this);
        if (!screen)
            return false;
        // What every destination reads: the place, its name, and for the offers a header that
        // doesn't lead back to this card.
        screen->setProperty("rid", id);
        screen->setProperty("restaurantName", restInfo->name);
        screen->setProperty("inertRestCard", true);
        navigation->pushViewController(screen, true);
        return true;
    }
    if (identifier == QLatin1String("show-phone-numbers"))
        return showPhoneNumbers(navigation, m_restaurants, id, this);
    if (identifier == QLatin1String("show-pictures")) {
        auto *gallery = qobject_cast<GalleryViewController *>(Storyboard::instantiate(QStringLiteral("Lugar"), QStringLiteral("pictures-nav-controller"), this));
        if (!gallery)
            return false;
        gallery->setProvider(m_galleryProvider);
        gallery->setRestaurantName(restInfo->name);
        navigation->presentViewController(gallery, true, Presentation::bottomSheet());
        return true;
    }
    if (identifier == QLatin1String("show-myplaces")) {
        auto *sheet = qobject_cast<SaveToMyPlacesViewController *>(Storyboard::instantiate(QStringLiteral("Lugar"), QStringLiteral("save-to-myplaces-vc"), this));
        if (!sheet)
            return false;
        sheet->rid = id;
        // Sharing from the sheet closes it first; the lists aren't saved by that path.
        sheet->shareCallback = [this, navigation] {
            navigation->dismissViewController(true);
            showActivities();
        };
        navigation->presentViewController(sheet, true, Presentation::bottomSheet(SaveToMyPlacesViewController::sheetHeight));
        return true;
    }
    return false;
}

void LugarTableViewController::scrollViewDidScroll(qreal y, qreal contentHeight, qreal frameHeight)
{
    m_contentY = y;
    m_contentHeight = contentHeight;
    m_frameHeight = frameHeight;
    matchBarColorToScrollPosition(false);
    stretchPictureOnScroll(y);
    moveLastCellToBottom();
}

void LugarTableViewController::matchBarColorToScrollPosition(bool force)
{
    if (m_finalHue == -1) {
        const QColor brand(QStringLiteral("#d95b43"));
        brand.getHsvF(&m_finalHue, &m_finalSaturation, &m_finalBrightness, &m_finalAlpha);
        m_startHue = m_finalHue;
        m_startSaturation = 0;
        m_startBrightness = 0;
        m_startAlpha = 0.3f;
    }
    // The change runs over the last 100 points before the picture's lower edge meets the bar's.
    const qreal p = m_heightCache.value(0, 200);
    const qreal x = p - barMaxY;
    const qreal t = std::clamp((m_contentY - (x - 100)) / 100, 0.0, 1.0);
    const auto mix = [t](float start, float final) { return start + (final - start) * float(t); };
    const QColor color = QColor::fromHsvF(m_finalHue, mix(m_startSaturation, m_finalSaturation), mix(m_startBrightness, m_finalBrightness),
                                          mix(m_startAlpha, m_finalAlpha));
    if (!force && color == m_lastBarColor)
        return;
    m_lastBarColor = color;
    // The bar shows the one-pixel picture; what it paints is what the picture holds.
    const QImage picture = QImage::fromData(BarColorPicture::picture(color), "BMP");
    m_barColor = picture.isNull() ? color : picture.pixelColor(0, 0);
    m_barTranslucent = m_barColor.alpha() != 255;
    emit barColorChanged();
}

void LugarTableViewController::stretchPictureOnScroll(qreal y)
{
    const qreal t = std::min(y, 0.0);
    const qreal a = std::abs(t);
    m_galleryImageTop = t;
    if (m_originalProfilePicY == -100000)
        m_originalProfilePicY = m_profilePicY;
    m_profilePicY = a + m_originalProfilePicY;
    emit scrollStateChanged();
}

void LugarTableViewController::moveLastCellToBottom()
{
    if (!m_lastCellBuilt)
        return;
    const qreal v = std::min(m_contentHeight - (m_contentY + m_frameHeight), 0.0);
    m_lastCellBottom = v;
    m_lastCellTop = std::abs(v);
    emit scrollStateChanged();
}

void LugarTableViewController::willDisplayRow(int row, qreal height)
{
    m_heightCache.insert(row, height);
    if (row >= 0 && row < m_cells.size() && m_cells.at(row) == LugaresCellType::myPlaces)
        m_lastCellBuilt = true;
}

void LugarTableViewController::advertisingCellBuilt()
{
    if (m_ad)
        Events::adShown(Events::AdPlacement::PlaceCard, m_ad->image_id);
}

void LugarTableViewController::viewWillAppear()
{
    Events::placeCardAppeared();
    matchBarColorToScrollPosition(true);
    moveLastCellToBottom();
}

void LugarTableViewController::viewWillDisappear() { m_titleSwipeEnabled = false; }

void LugarTableViewController::navbarSwiped()
{
    if (!m_titleSwipeEnabled)
        return;
    ++m_navbarSwipeCount;
    if (m_navbarSwipeCount < 6) {
        m_titleText = restInfo ? restInfo->name : QStringLiteral("(nil)");
    } else {
        m_navbarSwipeCount = 0;
        if (restInfo)
            m_titleText = QString::number(restInfo->id);
    }
    emit titleTextChanged();
}

void LugarTableViewController::imageTapped()
{
    if (!m_gallery.isEmpty())
        performSegue(QStringLiteral("show-pictures"));
}

void LugarTableViewController::imageSwipedLeft()
{
    if (!m_gallery.isEmpty())
        performSegue(QStringLiteral("show-pictures"));
}

void LugarTableViewController::dismiss() { popBack(); }

void LugarTableViewController::showActivities()
{
    if (!restInfo)
        return;
    const QString text = restInfo->name + QLatin1Char('\n') + restInfo->address;
    if (QClipboard *clipboard = QGuiApplication::clipboard())
        clipboard->setText(text);
    emit shared(text);
}

QString LugarTableViewController::noteKey() const { return QStringLiteral("notes_") + QString::number(rid()); }

void LugarTableViewController::textViewDidBeginEditing()
{
    m_notePlaceholderVisible = false;
    emit noteChanged();
}

bool LugarTableViewController::textViewShouldChangeText(const QString &replacement)
{
    if (replacement == QLatin1String("\n")) {
        emit noteEditingShouldEnd();
        return false;
    }
    return true;
}

void LugarTableViewController::textViewDidEndEditing(const QString &text)
{
    if (!restInfo)
        return;
    m_noteText = text;
    m_notePlaceholderVisible = text.isEmpty();
    // Stored also when empty: clearing a note is a change like any other.
    m_defaults.setString(text, noteKey());
    emit noteChanged();
}

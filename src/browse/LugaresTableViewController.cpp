#include "LugaresTableViewController.h"
#include "analytics/Events.h"
#include "browse/PlaceCardTexts.h"
#include "browse/LugaresRows.h"

#include "placecard/PlaceCards.h"
#include "platform/DefaultKeys.h"
#include "platform/UserDefaults.h"
#include "presentation/Globals.h"
#include "catalogue/Restaurants.h"
#include "platform/Dispatch.h"
#include "platform/Localize.h"
#include "platform/NotificationCenter.h"
#include "platform/OperationQueue.h"
#include "presentation/NavigationController.h"
#include "presentation/Storyboard.h"
#include "richtext/IconFont.h"

#include <QPointer>

#include <algorithm>

LugaresTableViewController::LugaresTableViewController(Restaurants &restaurants, QObject *parent)
    : ViewController(parent)
    , m_restaurants(restaurants)
    , R({QStringLiteral("white { color: #ffffff; }"), QStringLiteral("darkgray { color: #888888; }"),
         QStringLiteral("swipe-icon { font-name: Velmora-Icons; font-size: 31; }"),
         QStringLiteral("del-icon { font-name: Velmora-Icons; font-size: 32; }"),
         QStringLiteral("swipe-text { font-name: OpenSans; font-size: 10; }")})
    , m_rows(new LugaresRows(m_restaurants, m_sections, this))
{
}

LugaresTableViewController::~LugaresTableViewController()
{
    // Sections may be building for this list on the background queue; they read the catalogue
    // and this object, so both must outlive them.
    Globals::backgroundQueue().waitUntilAllOperationsAreFinished();
}

QAbstractListModel *LugaresTableViewController::rows() const { return m_rows; }

void LugaresTableViewController::viewDidLoad()
{
    hideFewerFilters();
    const auto localize = [this] {
        setTitle(qtTrId("search_places"));
        m_rows->rebuild();
    };
    NotificationCenter::defaultCenter().addObserver(this, Localize::changeNotification, [localize](const QVariant &) { localize(); });
    setTitle(qtTrId("search_places"));
}

void LugaresTableViewController::setEntries(const QSet<int> &ids, bool reload, const QString &searchTerm)
{
    // Builds may finish out of order on the background queue: only the latest asked for lands.
    const quint64 request = ++m_sectionsRequested;
    Globals::backgroundQueue().addOperation([self = QPointer(this), ids, reload, searchTerm, request] {
        if (self)
            self->buildSections(ids, searchTerm, reload, request);
    });
}

void LugaresTableViewController::setListing(std::function<QList<SortedEntry>()> list, std::function<void(bool empty)> shown)
{
    const quint64 request = ++m_sectionsRequested;
    Globals::backgroundQueue().addOperation([self = QPointer(this), restaurants = &m_restaurants, list = std::move(list),
                                             shown = std::move(shown), request] {
        const QList<Section> built = sectionsToShow(*restaurants, list());
        dispatchMain([self, built, shown, request] {
            if (!self || request != self->m_sectionsRequested)
                return;
            self->setSections(built, true);
            if (shown)
                shown(built.isEmpty());
        });
    });
}

void LugaresTableViewController::showSections(const QList<Section> &sections)
{
    ++m_sectionsRequested;
    setSections(sections, true);
}

QList<Section> sectionsToShow(Restaurants &restaurants, const QList<SortedEntry> &entries)
{
    for (qsizetype i = 0; i < std::min<qsizetype>(entries.size(), 24); ++i) {
        restaurants.brief(entries.at(i).id);
        restaurants.profileImage(entries.at(i).id);
    }
    return groupIntoSections(entries);
}

void LugaresTableViewController::buildSections(const QSet<int> &ids, const QString &searchTerm, bool reload, quint64 request)
{
    const QList<Section> built = sectionsToShow(m_restaurants, m_restaurants.sortedEntries(ids, searchTerm));
    dispatchMain([self = QPointer(this), built, reload, request] {
        if (self && (request == 0 || request == self->m_sectionsRequested))
            self->setSections(built, reload);
    });
}

void LugaresTableViewController::setSections(const QList<Section> &sections, bool reload)
{
    m_sections = sections;
    if (reload) {
        m_rows->update();
        emit sectionsChanged();
    }
}

QString LugaresTableViewController::points() const
{
    // A fixed score: the feature has no data yet; off, the label takes no room.
    return UserDefaults::standard().boolForKey(DefaultKeys::devEnableOpinions) ? QStringLiteral("4.5") : QString();
}

QStringList LugaresTableViewController::sectionIndexTitles() const
{
    QStringList titles;
    for (const Section &section : m_sections)
        titles.append(section.name);
    return titles;
}

int LugaresTableViewController::rowForSection(int section) const
{
    int row = 0;
    for (int s = 0; s < section && s < m_sections.size(); ++s)
        row += int(m_sections.at(s).ids.size());
    return row;
}

void LugaresTableViewController::setShownRows(int first, int last)
{
    m_rows->setShownRows(first, last);
}

bool LugaresTableViewController::rowsSettling() const { return m_rows->settling(); }

int LugaresTableViewController::idAtRow(int row) const { return m_rows->idAt(row); }

void LugaresTableViewController::showFewerFilters()
{
    m_fewerFiltersVisible = true;
    emit fewerFiltersChanged();
}

void LugaresTableViewController::hideFewerFilters()
{
    m_fewerFiltersVisible = false;
    emit fewerFiltersChanged();
}

bool LugaresTableViewController::hasPhone(int id) const
{
    const auto brief = m_restaurants.brief(id);
    return brief && brief->hasPhone;
}

QVariantList LugaresTableViewController::swipeButtonsForRow(int row) const
{
    const int id = m_rows->idAt(row);
    QVariantList buttons;
    for (qsizetype i = swipeButtons.size() - 1; i >= 0; --i) {
        QVariantMap button{{QStringLiteral("index"), int(i)}, {QStringLiteral("width"), 60.0}};
        QString markup;
        switch (swipeButtons.at(i)) {
        case SwipeButtonType::call:
            if (hasPhone(id)) {
                button.insert(QStringLiteral("background"), QStringLiteral("#9acb22"));
                markup = QStringLiteral("<white><swipe-icon>%1</swipe-icon>\n<swipe-text>Llamar</swipe-text></white>").arg(IconFont::call);
            } else {
                button.insert(QStringLiteral("background"), QStringLiteral("#cccccc"));
                markup = QStringLiteral("<darkgray><swipe-icon>%1</swipe-icon></darkgray>").arg(IconFont::callPlain);
            }
            button.insert(QStringLiteral("type"), QStringLiteral("call"));
            break;
        case SwipeButtonType::reserve:
            button.insert(QStringLiteral("background"), QStringLiteral("#d95b43"));
            button.insert(QStringLiteral("type"), QStringLiteral("reserve"));
            button.insert(QStringLiteral("width"), 72.0); // the library's own width for a two-line title
            markup = QStringLiteral("<white><swipe-icon>%1</swipe-icon>\n<swipe-text>Reservar</swipe-text></white>").arg(IconFont::reserve);
            break;
        case SwipeButtonType::delete_:
            button.insert(QStringLiteral("background"), QStringLiteral("#ff0000"));
            button.insert(QStringLiteral("type"), QStringLiteral("delete"));
            markup = QStringLiteral("<white><del-icon>%1</del-icon></white>").arg(IconFont::delete_);
            break;
        }
        button.insert(QStringLiteral("title"), QVariant::fromValue(R.render(QStringLiteral("<body>") + markup + QStringLiteral("</body>"))));
        buttons.append(button);
    }
    return buttons;
}

bool LugaresTableViewController::tappedButton(int row, int index)
{
    if (index < 0 || index >= swipeButtons.size())
        return false;
    const int id = m_rows->idAt(row);
    switch (swipeButtons.at(index)) {
    case SwipeButtonType::reserve:
        return false;
    case SwipeButtonType::call:
        if (!hasPhone(id))
            return false; // a grey button does nothing and leaves the swipe open
        showPhoneNumbersForId(id);
        return true;
    case SwipeButtonType::delete_:
        deleteRow(row);
        return deleteCallback ? deleteCallback(id) : false;
    }
    return false;
}

void LugaresTableViewController::deleteRow(int row)
{
    const int id = m_rows->idAt(row);
    const int section = m_rows->sectionAt(row);
    if (id < 0)
        return;
    bool sectionGone = false;
    m_rows->removeRow(row, [&] {
        m_sections[section].ids.removeOne(id);
        sectionGone = m_sections.at(section).ids.isEmpty();
        if (sectionGone) // the letter leaves the index in the same update
            m_sections.removeAt(section);
    });
    if (sectionGone)
        emit sectionsChanged();
}

void LugaresTableViewController::swipeWillBegin(int)
{
    Events::swipedPlaceCell();
    ++m_swipedCells;
    hideSectionIndex();
}

void LugaresTableViewController::swipeWillEnd(int)
{
    m_swipedCells = std::max(0, m_swipedCells - 1);
    if (m_swipedCells == 0)
        showSectionIndex();
}

void LugaresTableViewController::hideSectionIndex()
{
    m_indexAlpha = 0.4; // the letters dim; they don't vanish
    emit sectionIndexAlphaChanged();
}

void LugaresTableViewController::showSectionIndex()
{
    m_indexAlpha = 1.0;
    emit sectionIndexAlphaChanged();
}

void LugaresTableViewController::didSelectRow(int row)
{
    if (m_customEditing)
        return; // no selection while editing
    Events::tappedPlace();
    showPlace(m_rows->idAt(row), true);
}

bool LugaresTableViewController::showPlace(int id, bool animated)
{
    return showPlaceCard(navigationController(), m_restaurants, id, this, animated);
}

void LugaresTableViewController::showPhoneNumbersForId(int id)
{
    showPhoneNumbers(navigationController(), m_restaurants, id, this);
}

void LugaresTableViewController::setEditing(bool editing)
{
    m_customEditing = editing;
    emit editingChanged();
}


#include "MyPlacesViewController.h"

#include "browse/LugaresTableViewController.h"
#include "catalogue/Restaurants.h"
#include "platform/Dispatch.h"
#include "platform/Localize.h"
#include "platform/NotificationCenter.h"
#include "platform/Notifications.h"
#include "platform/UserDefaults.h"
#include "presentation/BarButtonItem.h"
#include "presentation/SideMenuPresenter.h"
#include "richtext/IconFont.h"

#include <QRegularExpression>

namespace {
struct ListLook {
    const char *title;
    const char *bigGlyph;
    const char *emptyText;
};
const ListLook looks[MyPlacesLists::count] = {
    {"myplaces_favorites", "U", "myplaces_save_favorites_by_tapping_ICON_myplaces"},
    {"myplaces_visited", "W", "myplaces_save_visited_by_tapping_ICON_myplaces"},
    {"myplaces_tovisit", "Y", "myplaces_save_to_visit_by_tapping_ICON_myplaces"},
};
}

MyPlacesViewController::MyPlacesViewController(Restaurants &restaurants, UserDefaults &defaults, QObject *parent)
    : ViewController(parent)
    , m_restaurants(restaurants)
    , m_defaults(defaults)
    , R({QStringLiteral("segment { font-name: OpenSans; font-size: 11; }"), QStringLiteral("icon { font-name: Velmora-Icons; font-size: 190; }"),
         QStringLiteral("msg { font-name: OpenSans; font-size: 15; }"), QStringLiteral("msg-icon { font-name: Velmora-Icons; font-size: 19; }")})
{
}

void MyPlacesViewController::viewDidLoad()
{
    auto *menu = new BarButtonItem(QStringLiteral("menu"), IconFont::drawer, BarButtonItem::iconFont(18), this);
    connect(menu, &BarButtonItem::triggered, this, [] {
        if (SideMenuPresenter *presenter = SideMenuPresenter::shared())
            presenter->showSideMenu(true);
    });
    setLeftItems({menu});
    QFont editFont(QStringLiteral("Open Sans"));
    editFont.setPixelSize(15);
    m_editButton = new BarButtonItem(QStringLiteral("edit"), QString(), editFont, this);
    connect(m_editButton, &BarButtonItem::triggered, this, [this] { setEditing(!m_editing); });

    m_lugares = new LugaresTableViewController(m_restaurants, this);
    m_lugares->deleteCallback = [this](int id) { return deleteCallback(id); };
    m_lugares->swipeButtons = {LugaresTableViewController::SwipeButtonType::delete_};
    m_lugares->loadViewIfNeeded();
    m_lugares->hideFewerFilters();

    NotificationCenter &center = NotificationCenter::defaultCenter();
    center.addObserver(this, Localize::changeNotification, [this](const QVariant &) {
        localize();
        reload();
    });
    // A new catalogue may know other places: the cards are made again from it.
    center.addObserver(this, Notifications::RestaurantsDidReload, [this](const QVariant &) { reload(); });
    localize();
    reload();
}

QObject *MyPlacesViewController::lugaresObject() const { return m_lugares.data(); }

void MyPlacesViewController::localize()
{
    setTitle(qtTrId("myplaces_title"));
    if (m_editButton)
        m_editButton->setTitle(qtTrId(m_editing ? "myplaces_done" : "myplaces_edit"));
    emit localized();
}

QStringList MyPlacesViewController::segmentTitles() const
{
    QStringList titles;
    for (const ListLook &look : looks)
        titles.append(qtTrId(look.title));
    return titles;
}

QString MyPlacesViewController::exploreTitle() const { return qtTrId("myplaces_explore"); }

void MyPlacesViewController::setSelectedSegment(int segment)
{
    if (segment == m_selectedSegment)
        return;
    m_selectedSegment = segment;
    emit selectedSegmentChanged();
    showSelectedTab();
}

void MyPlacesViewController::viewWillAppear()
{
    // A list changed from a place card is current on return.
    if (m_lugares)
        reload();
}

void MyPlacesViewController::loadDefaults() { m_lists.load(m_defaults); }

void MyPlacesViewController::reload()
{
    loadDefaults();
    showSelectedTab();
}

void MyPlacesViewController::showSelectedTab()
{
    if (m_selectedSegment < 0 || m_selectedSegment >= MyPlacesLists::count)
        return;
    // Ids the catalogue no longer knows are left out by the list, and kept in the store: a later
    // catalogue may know them again. A list of only such ids is as good as empty.
    const QSet<int> &ids = m_lists.sets[m_selectedSegment];
    if (ids.isEmpty() || m_restaurants.sortedEntries(ids, QString()).isEmpty())
        showEmpty(m_selectedSegment);
    else
        showLugares(ids);
}

void MyPlacesViewController::showLugares(const QSet<int> &ids)
{
    if (!m_lugares)
        return;
    // An empty search term: the list is alphabetical.
    m_lugares->setEntries(ids, true, QString());
    m_showingEmpty = false;
    setRightItems({m_editButton});
    emit shownChanged();
}

void MyPlacesViewController::showEmpty(int list)
{
    const ListLook &look = looks[list];
    m_emptyIcon = QString::fromLatin1(look.bigGlyph);
    const QString text = qtTrId(look.emptyText).replace(QStringLiteral("{I}"), IconFont::myplacesThin);
    m_emptyText = QVariant::fromValue(R.render(QStringLiteral("<body>") + text + QStringLiteral("</body>")));
    // Read aloud without its tags and without the glyph, which means nothing spoken.
    static const QRegularExpression tags(QStringLiteral("<[^>]*>"));
    m_emptySpoken = QString(text).remove(tags).remove(IconFont::myplacesThin).simplified();
    m_showingEmpty = true;
    // Nothing to edit: the button goes, and the editing flag waits for a list that has rows.
    setRightItems({});
    emit shownChanged();
}

bool MyPlacesViewController::deleteCallback(int id)
{
    const int list = m_selectedSegment == 2 ? MyPlacesLists::porVisitar
        : m_selectedSegment == 1            ? MyPlacesLists::visitados
                                            : MyPlacesLists::favoritos;
    m_lists.sets[list].remove(id);
    m_lists.saveList(m_defaults, list);
    dispatchAfter(300, [self = QPointer(this)] {
        if (self)
            self->reload();
    });
    return true;
}

void MyPlacesViewController::explore()
{
    NotificationCenter::defaultCenter().post(Notifications::MyPlacesExplore);
    if (SideMenuPresenter *presenter = SideMenuPresenter::shared())
        presenter->showMenuEntry(QStringLiteral("browse"));
}

void MyPlacesViewController::setEditing(bool editing)
{
    m_editing = editing;
    if (m_lugares)
        m_lugares->setEditing(editing);
    localize();
    emit editingChanged();
}

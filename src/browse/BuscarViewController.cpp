#include "BuscarViewController.h"

#include "FiltersViewController.h"
#include "DescubreTableViewController.h"
#include "LugaresTableViewController.h"
#include "OfertasTableViewController.h"
#include "ProvincesTableViewController.h"
#include "platform/DefaultKeys.h"
#include "presentation/Globals.h"
#include "platform/Notifications.h"
#include "catalogue/Restaurants.h"
#include "platform/Dispatch.h"
#include "platform/Localize.h"
#include "platform/NotificationCenter.h"
#include "platform/OperationQueue.h"
#include "platform/UserDefaults.h"
#include "presentation/BarButtonItem.h"
#include "presentation/NavigationController.h"
#include "presentation/SideMenuPresenter.h"
#include "presentation/Storyboard.h"
#include "richtext/IconFont.h"
#include "richtext/RichTextLayout.h"

#include <QTimer>

namespace {
const QString discoverTab = QStringLiteral("discover");
const QString placesTab = QStringLiteral("places");
const QString offersTab = QStringLiteral("offers");
}

BuscarViewController::BuscarViewController(Restaurants &restaurants, QObject *parent)
    : ViewController(parent)
    , m_restaurants(restaurants)
    , R({QStringLiteral("p { font-name: OpenSans-Light; font-size: 18; color: #ffffff; }selected { color: #ffffff7f; } "
                        "i { font-name: Velmora-Icons; }tab { font-name: OpenSans-Semibold; font-size: 12; }")})
    , m_searchQueue(std::make_unique<OperationQueue>())
{
}

BuscarViewController::~BuscarViewController()
{
    m_searchQueue->cancelAllOperations();
    m_searchQueue->waitUntilAllOperationsAreFinished();
}

void BuscarViewController::viewDidLoad()
{
    m_menuButton = new BarButtonItem(QStringLiteral("menu"), IconFont::drawer, BarButtonItem::iconFont(18), this);
    connect(m_menuButton, &BarButtonItem::triggered, this, [] {
        if (SideMenuPresenter *menu = SideMenuPresenter::shared())
            menu->showSideMenu(true);
    });
    m_searchButton = new BarButtonItem(QStringLiteral("search"), IconFont::browseThin, BarButtonItem::iconFont(20), this);
    connect(m_searchButton, &BarButtonItem::triggered, this, &BuscarViewController::searchTapped);
    m_cancelButton = new BarButtonItem(QStringLiteral("cancel"), IconFont::back, BarButtonItem::iconFont(23), this);
    connect(m_cancelButton, &BarButtonItem::triggered, this, &BuscarViewController::cancelSearch);
    m_filterButton = new BarButtonItem(QStringLiteral("filter"), QStringLiteral("d"), BarButtonItem::iconFont(23), this);
    connect(m_filterButton, &BarButtonItem::triggered, this, &BuscarViewController::filter);
    setLeftItems({m_menuButton});
    setRightItems({m_searchButton});

    m_descubreVC = new DescubreTableViewController(m_restaurants, this);
    m_lugaresVC = new LugaresTableViewController(m_restaurants, this);
    // Made here, on this screen's catalogue, like the place list.
    m_ofertasVC = new OfertasTableViewController(m_restaurants, this);
    // The tabs behind the list read once the list shows: at start the two cores go to the
    // list's rows and the window.
    m_descubreVC->readOnLoad = false;
    m_ofertasVC->readOnLoad = false;
    for (ViewController *child : {static_cast<ViewController *>(m_descubreVC), static_cast<ViewController *>(m_lugaresVC),
                                  static_cast<ViewController *>(m_ofertasVC)})
        if (child)
            child->loadViewIfNeeded();

    applyFilters(Filters{});
    hideUnavailableTabs();
    m_lugaresVC->hideFewerFilters();
    m_lugaresVC->swipeButtons = {LugaresTableViewController::SwipeButtonType::call};

    NotificationCenter &center = NotificationCenter::defaultCenter();
    center.addObserver(this, Localize::changeNotification, [this](const QVariant &) { localize(); });
    center.addObserver(this, Notifications::VelmoraReloadRestaurants, [this](const QVariant &) { reloadRestaurants(); });
    center.addObserver(this, Notifications::RestaurantsDidReload, [this](const QVariant &) { reloadRestaurants(); });
    center.addObserver(this, Notifications::MyPlacesExplore, [this](const QVariant &) { showDescubre(); });
    localize();
}

void BuscarViewController::viewWillDisappear()
{
    if (m_searchVisible)
        emit searchFieldFocusReleased();
}

int BuscarViewController::currentProvince() const
{
    return UserDefaults::standard().integerForKey(DefaultKeys::province);
}

QStringList BuscarViewController::tabTitles() const
{
    QStringList titles;
    for (const QString &tab : m_tabs)
        titles.append(tab == discoverTab ? qtTrId("search_discover") : tab == offersTab ? qtTrId("search_offers") : qtTrId("search_places"));
    return titles;
}

QList<QObject *> BuscarViewController::tabControllers() const
{
    QList<QObject *> controllers;
    for (const QString &tab : m_tabs)
        controllers.append(tab == discoverTab ? static_cast<QObject *>(m_descubreVC)
                           : tab == offersTab ? static_cast<QObject *>(m_ofertasVC)
                                              : static_cast<QObject *>(m_lugaresVC));
    return controllers;
}

void BuscarViewController::selectTab(int index)
{
    if (index < 0 || index >= m_tabs.size() || index == m_selectedTab)
        return;
    m_selectedTab = index;
    emit selectedTabChanged();
    // Search mode belongs to the place list.
    if (m_tabs.at(index) != placesTab)
        cancelSearch();
}

void BuscarViewController::selectTabKind(const QString &kind)
{
    const qsizetype index = m_tabs.indexOf(kind);
    if (index >= 0)
        selectTab(int(index));
}

void BuscarViewController::hideUnavailableTabs()
{
    // The place list is where the screen starts; afterwards the chosen tab stays chosen.
    const QString selected = m_tabs.isEmpty() ? placesTab : m_tabs.value(m_selectedTab);
    const int province = currentProvince();
    QStringList tabs;
    if (m_descubreVC && m_restaurants.provinceHasPromos(province))
        tabs.append(discoverTab);
    tabs.append(placesTab);
    if (m_ofertasVC && m_restaurants.provinceHasOffers(province))
        tabs.append(offersTab);
    m_tabs = tabs;
    m_selectedTab = std::max<int>(0, int(tabs.indexOf(selected)));
    emit tabsChanged();
    emit selectedTabChanged();
}

void BuscarViewController::localize()
{
    const auto province = m_restaurants.province(currentProvince());
    setProvinceName(province ? province->name : QStringLiteral("(invalid province)"));
    emit tabsChanged();
}

void BuscarViewController::setProvinceName(const QString &name)
{
    m_provinceName = name;
    m_provinceTitle = R.render(QStringLiteral("<body><p><![CDATA[%1]]><i>%2</i></p></body>")
                                   .arg(name.isEmpty() ? QString() : name + QLatin1Char(' '), IconFont::chevronClosed));
    emit provinceTitleChanged();
}

Filters BuscarViewController::listFilters(const Filters &filters) const
{
    Filters copy = filters;
    if (copy.municipalities.isEmpty())
        if (const auto province = m_restaurants.province(currentProvince()))
            copy.municipalities = province->municipalityIds();
    return copy;
}

void BuscarViewController::applyFilters(const Filters &filters)
{
    if (!m_lugaresVC)
        return;
    // Typed text is looked up again with the new filters.
    if (!m_activeSearch.isEmpty()) {
        startSearching(m_activeSearch, filters);
        return;
    }
    const bool hideClosed = !UserDefaults::standard().boolForKey(DefaultKeys::showClosedPlaces);
    m_lugaresVC->setListing([restaurants = &m_restaurants, copy = listFilters(filters), hideClosed] {
        return restaurants->searchListing(copy, hideClosed, QString());
    },
                            [self = QPointer(this)](bool empty) {
                                if (self)
                                    self->listShown(empty);
                            });
}

void BuscarViewController::listShown(bool empty)
{
    // Asks for fewer filters only when filters are set: an empty text search alone stays blank.
    if (!m_lugaresVC)
        return;
    if (!m_tabsRead) {
        // A moment later, so the list's first frames have the cores.
        m_tabsRead = true;
        QTimer::singleShot(300, this, [this] {
            m_restaurants.startIsOver();
            if (m_descubreVC)
                m_descubreVC->reloadInBackground();
            if (m_ofertasVC)
                m_ofertasVC->reloadOffersInBackground();
        });
    }
    if (empty && !m_lastFilters.isEmpty())
        m_lugaresVC->showFewerFilters();
    else
        m_lugaresVC->hideFewerFilters();
}

void BuscarViewController::searchTapped()
{
    showLugares();
    const QVariant saved = UserDefaults::standard().objectForKey(DefaultKeys::filters);
    if (saved.typeId() == QMetaType::QVariantMap) {
        m_lastFilters.load(saved.toMap());
        // Ids this catalogue or province no longer has are dropped one by one; the rest stay.
        const auto province = m_restaurants.province(currentProvince());
        m_lastFilters.municipalities.intersect(province ? province->municipalityIds() : QSet<int>());
        const QList<int> cuisines = m_restaurants.cuisines().contents().keys();
        m_lastFilters.cuisines.intersect(QSet<int>(cuisines.begin(), cuisines.end()));
        m_lastFilters.prices.intersect(PriceFilterTableViewController::rankIds());
        applyFilters(m_lastFilters);
    }
    showSearch();
}

void BuscarViewController::focusSearch()
{
    if (m_searchVisible)
        emit searchFieldFocusRequested();
    else
        searchTapped();
}

void BuscarViewController::showSearch()
{
    updateFilterButtonColor();
    setRightItems({m_filterButton});
    setLeftItems({m_cancelButton});
    m_searchVisible = true;
    m_activeSearch = m_searchText;
    emit searchVisibleChanged();
    emit searchFieldFocusRequested();
    applyFilters(m_lastFilters);
}

bool BuscarViewController::closeOwnLayer()
{
    if (!m_searchVisible)
        return false;
    cancelSearch();
    return true;
}

void BuscarViewController::cancelSearch()
{
    if (!m_searchVisible)
        return;
    setLeftItems({m_menuButton});
    setRightItems({m_searchButton});
    m_searchVisible = false;
    m_activeSearch.clear();
    emit searchVisibleChanged();
    emit searchFieldFocusReleased();
    // The whole province again; the saved filters wait for the next opening.
    applyFilters(Filters{});
}

void BuscarViewController::textFieldShouldChange(const QString &oldText, const QString &newText)
{
    if (oldText.isEmpty())
        return;
    dispatchMain([self = QPointer(this), newText] {
        if (!self)
            return;
        self->m_activeSearch = newText;
        if (!newText.isEmpty())
            self->startSearching(newText);
        else
            self->applyFilters(self->m_lastFilters);
    });
}

void BuscarViewController::textFieldChanged(const QString &text)
{
    m_searchText = text;
    m_activeSearch = text;
}

void BuscarViewController::textFieldShouldClear()
{
    m_searchText.clear();
    dispatchMain([self = QPointer(this)] {
        if (!self)
            return;
        self->m_activeSearch.clear();
        self->applyFilters(self->m_lastFilters);
    });
}

void BuscarViewController::startSearching(const QString &text, const std::optional<Filters> &filters)
{
    const Filters chosen = filters.value_or(m_lastFilters);
    // One search at a time; only the latest waiting text survives, and nothing is cancelled.
    if (m_searchRunning) {
        m_pendingSearch = {text, chosen};
        return;
    }
    m_searchRunning = true;
    m_pendingSearch.reset();
    ++m_searchesStarted;
    // The whole keystroke, matching, filters and order, is the search thread's: the main thread
    // only shows the rows.
    const bool hideClosed = !UserDefaults::standard().boolForKey(DefaultKeys::showClosedPlaces);
    m_searchQueue->addOperation([self = QPointer(this), restaurants = &m_restaurants, text, copy = listFilters(chosen), hideClosed] {
        const QList<Section> sections = sectionsToShow(*restaurants, restaurants->searchListing(copy, hideClosed, text));
        dispatchMain([self, sections] {
            if (self)
                self->searchCompleted(sections);
        });
    });
}

void BuscarViewController::searchCompleted(const QList<Section> &sections)
{
    m_searchRunning = false;
    // A search overtaken by a newer text, or by the end of searching, shows nothing.
    if (m_pendingSearch) {
        const auto [text, filters] = *std::exchange(m_pendingSearch, std::nullopt);
        startSearching(text, filters);
        return;
    }
    if (m_activeSearch.isEmpty() || !m_lugaresVC)
        return;
    m_lugaresVC->showSections(sections);
    listShown(sections.isEmpty());
}

void BuscarViewController::updateFilterButtonColor()
{
    if (m_filterButton)
        m_filterButton->setTintColor(m_lastFilters.isEmpty() ? QColor(Qt::white)
                                                             : RichTextLayout::qcolor(Globals::activeFiltersColor()));
}

void BuscarViewController::filtersChanged(const Filters &filters)
{
    UserDefaults::standard().setObject(filters.dictionary(), DefaultKeys::filters);
    m_lastFilters = filters;
    dispatchMain([self = QPointer(this), filters] {
        if (self)
            self->applyFilters(filters);
    });
    updateFilterButtonColor();
}

void BuscarViewController::provinceSelected(int, bool keepFilters)
{
    if (!keepFilters) {
        localize();
        // A new province keeps the chosen cuisines and prices, not the municipalities.
        m_lastFilters.municipalities.clear();
        UserDefaults::standard().setObject(m_lastFilters.dictionary(), DefaultKeys::filters);
    }
    dispatchMain([self = QPointer(this)] {
        NotificationCenter::defaultCenter().post(Notifications::VelmoraReloadRestaurants);
        // Text matches are the province's: typed text is looked up again in the new one.
        if (self && !self->m_activeSearch.isEmpty())
            self->startSearching(self->m_activeSearch);
        if (self && self->navigationController())
            self->navigationController()->dismissViewController(true);
    });
}

void BuscarViewController::reloadRestaurants()
{
    applyFilters(Filters{});
    hideUnavailableTabs();
}

void BuscarViewController::showLugares() { selectTabKind(placesTab); }

bool BuscarViewController::openPlace(int id, bool animated)
{
    showLugares();
    return m_lugaresVC && m_lugaresVC->showPlace(id, animated);
}

bool BuscarViewController::hasPlace(int id) const
{
    return id > 0 && m_restaurants.restaurantInfo(id).has_value();
}

bool BuscarViewController::hasProvince(int id) const
{
    return m_restaurants.province(id) != nullptr;
}

bool BuscarViewController::switchProvince(int id)
{
    if (!m_restaurants.province(id))
        return false;
    UserDefaults::standard().setInteger(id, DefaultKeys::province);
    provinceSelected(id, false);
    return true;
}

void BuscarViewController::searchFor(const QString &text)
{
    showLugares();
    m_searchText = text;
    showSearch();
    if (!text.isEmpty())
        startSearching(text);
}

bool BuscarViewController::showTabKind(const QString &kind)
{
    if (!m_tabs.contains(kind))
        return false;
    selectTabKind(kind);
    return true;
}
void BuscarViewController::showDescubre() { selectTabKind(discoverTab); }

void BuscarViewController::filter()
{
    // The panel edits lastFilters and answers through filtersChanged().
    emit searchFieldFocusReleased();
    if (NavigationController *navigation = navigationController())
        if (ViewController *panel = Storyboard::instantiate(QStringLiteral("Filtros"), QStringLiteral("filters-view-controller"), this)) {
            if (auto *filters = qobject_cast<FiltersViewController *>(panel)) {
                filters->setFilters(m_lastFilters);
                filters->setDelegate(this);
            }
            navigation->presentViewController(panel, true, Presentation::fromRight(185, RichTextLayout::qcolor(Globals::filtersDimColor())));
        }
}

void BuscarViewController::toggleProvinces()
{
    if (NavigationController *navigation = navigationController())
        if (ViewController *picker = Storyboard::instantiate(QStringLiteral("Buscar"), QStringLiteral("provinces-view-controller"), this)) {
            if (auto *provinces = qobject_cast<ProvincesTableViewController *>(picker))
                provinces->setDelegate(this);
            navigation->presentViewController(picker, true, Presentation::fromTop());
        }
}

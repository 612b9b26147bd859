#pragma once

#include "catalogue/Filters.h"
#include "FiltersDelegate.h"
#include "ProvincesSelectorDelegate.h"
#include "presentation/ViewController.h"
#include "richtext/AttributedString.h"
#include "richtext/RichString.h"

#include <QPointer>
#include <QSet>
#include <QStringList>

#include <memory>
#include <optional>

class BarButtonItem;
class DescubreTableViewController;
class OfertasTableViewController;
#include "browse/LugaresTableViewController.h"
class OperationQueue;
class Restaurants;

// The main screen: tabs for the discover feed, the place list and the offers of the current
// province; the province's name as the title; and the search bar that combines free text with
// the saved filters. Filters apply only while the search bar is open.
class BuscarViewController : public ViewController, public ProvincesSelectorDelegate, public FiltersDelegate
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made through the Storyboard registry")
    Q_PROPERTY(QStringList tabs READ tabs NOTIFY tabsChanged)
    Q_PROPERTY(QStringList tabTitles READ tabTitles NOTIFY tabsChanged)
    Q_PROPERTY(bool tabBarHidden READ tabBarHidden NOTIFY tabsChanged)
    Q_PROPERTY(int selectedTab READ selectedTab WRITE selectTab NOTIFY selectedTabChanged)
    Q_PROPERTY(QList<QObject *> tabControllers READ tabControllers NOTIFY tabsChanged)
    Q_PROPERTY(QVariant provinceTitle READ provinceTitle NOTIFY provinceTitleChanged)
    Q_PROPERTY(QString provinceName READ provinceName NOTIFY provinceTitleChanged)
    Q_PROPERTY(bool searchVisible READ searchVisible NOTIFY searchVisibleChanged)
    Q_PROPERTY(QString searchText READ searchText NOTIFY searchVisibleChanged)

public:
    explicit BuscarViewController(Restaurants &restaurants, QObject *parent = nullptr);
    ~BuscarViewController() override;

    QUrl viewUrl() const override { return QUrl(QStringLiteral("qrc:/Velmora/browse/BuscarView.qml")); }

    // Tabs by kind: "discover", "places", "offers".
    QStringList tabs() const { return m_tabs; }
    QStringList tabTitles() const;
    bool tabBarHidden() const { return m_tabs.size() == 1; }
    int selectedTab() const { return m_selectedTab; }
    void selectTab(int index);
    QList<QObject *> tabControllers() const;
    LugaresTableViewController *lugaresVC() const { return m_lugaresVC.data(); }

    // Where links lead, as a user would get there. Each answers false when it can't go there
    // (no such place or province, or the tab isn't offered in this province).
    bool openPlace(int id, bool animated);
    // Whether the catalogue has the place, or the province (before any screen is moved to them).
    bool hasPlace(int id) const;
    bool hasProvince(int id) const;
    bool switchProvince(int id);
    void searchFor(const QString &text);
    bool showTabKind(const QString &kind);

    QVariant provinceTitle() const { return QVariant::fromValue(m_provinceTitle); }
    QString provinceName() const { return m_provinceName; }

    // Browsing and search modes.
    bool searchVisible() const { return m_searchVisible; }
    QString searchText() const { return m_searchText; }
    QString activeSearch() const { return m_activeSearch; }
    Q_INVOKABLE void searchTapped();
    // The keyboard's way to search: opens the search bar as its button does, or gives the open
    // bar's field the keys again.
    void focusSearch();
    Q_INVOKABLE void cancelSearch();
    bool closeOwnLayer() override;
    // The text field's events, as the view reports them.
    Q_INVOKABLE void textFieldShouldChange(const QString &oldText, const QString &newText);
    Q_INVOKABLE void textFieldChanged(const QString &text);
    Q_INVOKABLE void textFieldShouldClear();

    // Lists the places matching `text` that pass `filters` (the saved ones when not given), on
    // a thread of its own: one search at a time, and only the latest text waiting.
    void startSearching(const QString &text, const std::optional<Filters> &filters = std::nullopt);
    void searchCompleted(const QList<Section> &sections);
    bool searchRunning() const { return m_searchRunning; }
    std::optional<QString> pendingSearch() const
    {
        return m_pendingSearch ? std::optional(m_pendingSearch->first) : std::nullopt;
    }
    // How many text searches have started, for checks of the protocol.
    int searchesStarted() const { return m_searchesStarted; }

    void applyFilters(const Filters &filters);
    const Filters &lastFilters() const { return m_lastFilters; }
    BarButtonItem *filterButton() const { return m_filterButton; }
    void updateFilterButtonColor();
    // From the filters panel and the province picker.
    void filtersChanged(const Filters &filters) override;
    void provinceSelected(int id, bool keepFilters) override;

    void reloadRestaurants();
    void hideUnavailableTabs();
    void localize();
    void showLugares();
    void showDescubre();
    Q_INVOKABLE void toggleProvinces();
    Q_INVOKABLE void filter();

signals:
    void tabsChanged();
    void selectedTabChanged();
    void provinceTitleChanged();
    void searchVisibleChanged();
    // The view moves the keyboard focus to the search field.
    void searchFieldFocusRequested();
    void searchFieldFocusReleased();

protected:
    void viewDidLoad() override;
    void viewWillDisappear() override;

private:
    int currentProvince() const;
    // `filters` as the list applies them: every municipality of the province when none is chosen.
    Filters listFilters(const Filters &filters) const;
    // Shows the fewer-filters hint for an empty list that filters narrowed.
    void listShown(bool empty);
    void setProvinceName(const QString &name);
    void showSearch();
    void selectTabKind(const QString &kind);

    Restaurants &m_restaurants;
    RichString R;
    QPointer<DescubreTableViewController> m_descubreVC;
    QPointer<LugaresTableViewController> m_lugaresVC;
    QPointer<OfertasTableViewController> m_ofertasVC;
    QStringList m_tabs;
    int m_selectedTab = 0;
    AttributedString m_provinceTitle;
    QString m_provinceName;

    BarButtonItem *m_menuButton = nullptr;
    BarButtonItem *m_searchButton = nullptr;
    BarButtonItem *m_cancelButton = nullptr;
    BarButtonItem *m_filterButton = nullptr;
    Filters m_lastFilters;
    bool m_searchVisible = false;
    bool m_tabsRead = false; // the discover and offers tabs, once the list first shows
    QString m_searchText;
    QString m_activeSearch;
    bool m_searchRunning = false;
    std::optional<std::pair<QString, Filters>> m_pendingSearch;
    int m_searchesStarted = 0;
    std::unique_ptr<OperationQueue> m_searchQueue;
};

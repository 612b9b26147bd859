#pragma once

#include "browse/Sections.h"
#include "catalogue/Records.h"
#include "presentation/ViewController.h"
#include "richtext/RichString.h"

#include <QAbstractListModel>
#include <QList>
#include <QSet>
#include <QStringList>

#include <functional>

class Restaurants;

// The sections of a list about to be shown, its first screenful's briefs and pictures read
// into the caches meanwhile (the cards read them on the main thread). For a background thread.
QList<Section> sectionsToShow(Restaurants &restaurants, const QList<SortedEntry> &entries);

// The place list: any set of places, sorted into lettered sections with a side index, one card
// a row. Its owner decides the places and the swipe buttons; the list sorts, draws and reports.
// As a model, each row is one place; rows carry their section so the view can draw the index.
class LugaresTableViewController : public ViewController
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made through the Storyboard registry")
    Q_PROPERTY(QAbstractListModel *rows READ rows CONSTANT)
    Q_PROPERTY(QStringList sectionIndexTitles READ sectionIndexTitles NOTIFY sectionsChanged)
    Q_PROPERTY(bool fewerFiltersVisible READ fewerFiltersVisible NOTIFY fewerFiltersChanged)
    Q_PROPERTY(qreal sectionIndexAlpha READ sectionIndexAlpha NOTIFY sectionIndexAlphaChanged)
    Q_PROPERTY(bool customEditing READ customEditing NOTIFY editingChanged)
    // The opinions feature's placeholder score on every card, while the developer switch is on.
    Q_PROPERTY(QString points READ points NOTIFY sectionsChanged)

public:
    enum class SwipeButtonType { call, reserve, delete_ };

    explicit LugaresTableViewController(Restaurants &restaurants, QObject *parent = nullptr);
    ~LugaresTableViewController() override;

    QUrl viewUrl() const override { return QUrl(QStringLiteral("qrc:/Velmora/browse/LugaresView.qml")); }

    // The owner's way in: sorts and groups on the background queue, then shows.
    void setEntries(const QSet<int> &ids, bool reload, const QString &searchTerm);
    // The same for entries `list` gives on the background queue; `shown` runs on the main thread
    // once they are shown, told whether the list is empty.
    void setListing(std::function<QList<SortedEntry>()> list, std::function<void(bool empty)> shown = {});
    // Sections made elsewhere, shown at once (main thread); builds asked for earlier don't land.
    void showSections(const QList<Section> &sections);
    // The worker: runs on Globals::backgroundQueue(), never on the main thread; hands the
    // sections to the main thread and reloads there when asked, unless a later setEntries()
    // asked for others meanwhile (`request` 0: show them regardless).
    void buildSections(const QSet<int> &ids, const QString &searchTerm, bool reload, quint64 request = 0);

    QList<Section> sections() const { return m_sections; }
    QStringList sectionIndexTitles() const;
    Q_INVOKABLE int rowForSection(int section) const;
    Q_INVOKABLE int idAtRow(int row) const;
    // The rows the view has room for on screen, first to last: the cards there are rewritten
    // and added one at a time.
    Q_INVOKABLE void setShownRows(int first, int last);
    // True while cards on screen are still being rewritten or added.
    Q_INVOKABLE bool rowsSettling() const;

    QList<SwipeButtonType> swipeButtons;
    std::function<bool(int)> deleteCallback;

    bool fewerFiltersVisible() const { return m_fewerFiltersVisible; }
    void showFewerFilters();
    void hideFewerFilters();

    // Swipe buttons for a row, in the order they stand from the right edge:
    // [{type, background, title (rendered markup), width}].
    Q_INVOKABLE QVariantList swipeButtonsForRow(int row) const;
    // The swipe closes when this answers true.
    Q_INVOKABLE bool tappedButton(int row, int index);
    Q_INVOKABLE void swipeWillBegin(int row);
    Q_INVOKABLE void swipeWillEnd(int row);
    qreal sectionIndexAlpha() const { return m_indexAlpha; }
    QString points() const;
    int swipedCells() const { return m_swipedCells; }
    Q_INVOKABLE void hideSectionIndex();
    Q_INVOKABLE void showSectionIndex();

    Q_INVOKABLE void didSelectRow(int row);
    // Pushes the place's card; false for a place the catalogue doesn't have.
    bool showPlace(int id, bool animated);
    void showPhoneNumbersForId(int id);

    bool customEditing() const { return m_customEditing; }
    Q_INVOKABLE void setEditing(bool editing);

    QAbstractListModel *rows() const;

signals:
    void sectionsChanged();
    void fewerFiltersChanged();
    void sectionIndexAlphaChanged();
    void editingChanged();

protected:
    void viewDidLoad() override;

private:
    quint64 m_sectionsRequested = 0; // main thread only
    void setSections(const QList<Section> &sections, bool reload);
    bool hasPhone(int id) const;
    void deleteRow(int row);

    Restaurants &m_restaurants;
    RichString R;
    QList<Section> m_sections;
    class LugaresRows *m_rows;
    bool m_fewerFiltersVisible = false;
    bool m_customEditing = false;
    int m_swipedCells = 0;
    qreal m_indexAlpha = 1.0;
};

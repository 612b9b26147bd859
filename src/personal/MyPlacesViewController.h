#pragma once

#include "catalogue/MyPlacesLists.h"
#include "presentation/ViewController.h"
#include "richtext/RichString.h"

#include <QPointer>
#include <QStringList>
#include <QVariant>

class LugaresTableViewController;
class Restaurants;
class UserDefaults;

// My places: the user's three lists, one at a time under a segmented control. A list with
// places shows them through the shared place list with a delete swipe; an empty one shows its
// own picture, a line on how to fill it and a button that leads to the discover feed.
class MyPlacesViewController : public ViewController
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made through the Storyboard registry")
    Q_PROPERTY(QStringList segmentTitles READ segmentTitles NOTIFY localized)
    Q_PROPERTY(int selectedSegment READ selectedSegment WRITE setSelectedSegment NOTIFY selectedSegmentChanged)
    Q_PROPERTY(bool showingEmpty READ showingEmpty NOTIFY shownChanged)
    Q_PROPERTY(QObject *lugares READ lugaresObject CONSTANT)
    Q_PROPERTY(QString emptyIcon READ emptyIcon NOTIFY shownChanged)
    Q_PROPERTY(QVariant emptyText READ emptyText NOTIFY shownChanged)
    Q_PROPERTY(QString emptySpoken READ emptySpoken NOTIFY shownChanged)
    Q_PROPERTY(QString exploreTitle READ exploreTitle NOTIFY localized)
    Q_PROPERTY(bool editing READ editing NOTIFY editingChanged)

public:
    MyPlacesViewController(Restaurants &restaurants, UserDefaults &defaults, QObject *parent = nullptr);

    QUrl viewUrl() const override { return QUrl(QStringLiteral("qrc:/Velmora/personal/MyPlacesView.qml")); }

    const MyPlacesLists &lists() const { return m_lists; }
    LugaresTableViewController *lugares() const { return m_lugares; }
    QStringList segmentTitles() const;
    int selectedSegment() const { return m_selectedSegment; }
    // Selecting a segment shows its list, as the control's value change does.
    void setSelectedSegment(int segment);
    bool showingEmpty() const { return m_showingEmpty; }
    QString emptyIcon() const { return m_emptyIcon; }
    QVariant emptyText() const { return m_emptyText; }
    QString emptySpoken() const { return m_emptySpoken; }
    QString exploreTitle() const;
    bool editing() const { return m_editing; }

    void loadDefaults();
    // Reads the lists again and shows the selected one.
    void reload();
    void showSelectedTab();
    // The place list's delete callback: the row has gone already; the id leaves the list that
    // is selected now, the list is saved, and 0.3 s later the screen reloads.
    bool deleteCallback(int id);
    Q_INVOKABLE void explore();
    Q_INVOKABLE void setEditing(bool editing);

    void viewWillAppear() override;

signals:
    void localized();
    void selectedSegmentChanged();
    void shownChanged();
    void editingChanged();

protected:
    void viewDidLoad() override;

private:
    QObject *lugaresObject() const;
    void showEmpty(int list);
    void showLugares(const QSet<int> &ids);
    void localize();

    Restaurants &m_restaurants;
    UserDefaults &m_defaults;
    RichString R;
    MyPlacesLists m_lists;
    QPointer<LugaresTableViewController> m_lugares;
    class BarButtonItem *m_editButton = nullptr;
    int m_selectedSegment = 0;
    bool m_showingEmpty = true;
    bool m_editing = false;
    QString m_emptyIcon;
    QVariant m_emptyText;
    QString m_emptySpoken;
};

#pragma once

#include "SideMenuTableViewController.h"

#include <QObject>
#include <QPointer>
#include <QtQml/qqmlregistration.h>

#include "app/SideDrawer.h"
#include "personal/SubscribeProvincesDelegate.h"

// The side menu: its table of top-level screens, each built on first use and kept for good, and
// the button that invites to the SMS subscription. Choosing a screen puts it on the content's
// stack above the search screen and closes the drawer.
class SideMenuViewController : public QObject, public SubscribeProvincesDelegate
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the application")
    Q_PROPERTY(SideMenuTableViewController *tableVC READ tableVC CONSTANT)
    Q_PROPERTY(bool moreInfoButtonHidden READ moreInfoButtonHidden NOTIFY moreInfoButtonChanged)
    Q_PROPERTY(QString moreInfoTitle READ moreInfoTitle NOTIFY moreInfoButtonChanged)

public:
    explicit SideMenuViewController(QObject *parent = nullptr);

    void setContentController(NavigationController *content) { m_contentController = content; }
    void setDrawer(SideDrawer *drawer) { m_drawer = drawer; }
    void viewDidLoad();

    SideMenuTableViewController *tableVC() { return &m_tableVC; }
    bool moreInfoButtonHidden() const { return m_moreInfoHidden; }
    QString moreInfoTitle() const { return m_moreInfoTitle; }

    void goToSearch();
    void goToMap();
    void goToMyPlaces();
    void goToInfo();
    void goToSettings();
    void goToDiscover();
    void updateMoreInfoButton();
    Q_INVOKABLE void moreInfoTouched();
    // The invitation opened from the menu ended: its sheet or the province screen goes.
    void provinceSelectionDidCancel() override;
    void provinceSelectionDidFinish(const QSet<int> &provinces) override;

    ViewController *mapViewController();
    ViewController *myPlacesViewController();
    ViewController *infoViewController();
    ViewController *settingsViewController();

signals:
    void moreInfoButtonChanged();

private:
    void localize();
    void show(ViewController *screen);
    ViewController *lazily(QPointer<ViewController> &field, const char *storyboard, const char *identifier);

    SideMenuTableViewController m_tableVC;
    QPointer<NavigationController> m_contentController;
    QPointer<SideDrawer> m_drawer;
    QPointer<ViewController> m_mapViewController;
    QPointer<ViewController> m_myPlacesViewController;
    QPointer<ViewController> m_infoViewController;
    QPointer<ViewController> m_settingsViewController;
    bool m_moreInfoHidden = true;
    QString m_moreInfoTitle;
};

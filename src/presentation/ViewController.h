#pragma once

#include "presentation/BarButtonItem.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QUrl>
#include <QtQml/qqmlregistration.h>



// A screen's controller: its state and rules, and the bar it shows. The QML view named by
// viewUrl() draws it and forwards the user's actions; tests call the controller directly.
class NavigationController;

class ViewController : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Screens are made through the Storyboard registry")
    Q_PROPERTY(QString title READ title NOTIFY titleChanged)
    Q_PROPERTY(QList<QObject *> leftItems READ leftItemObjects NOTIFY barItemsChanged)
    Q_PROPERTY(QList<QObject *> rightItems READ rightItemObjects NOTIFY barItemsChanged)
    Q_PROPERTY(QUrl viewUrl READ viewUrl CONSTANT)
    Q_PROPERTY(bool navigationBarHidden READ navigationBarHidden CONSTANT)

public:
    explicit ViewController(QObject *parent = nullptr);

    virtual QUrl viewUrl() const = 0;
    virtual bool navigationBarHidden() const { return false; }

    QString title() const { return m_title; }
    void setTitle(const QString &title);

    QList<BarButtonItem *> leftItems() const { return m_leftItems; }
    QList<BarButtonItem *> rightItems() const { return m_rightItems; }
    void setLeftItems(const QList<BarButtonItem *> &items);
    void setRightItems(const QList<BarButtonItem *> &items);

    NavigationController *navigationController() const;
    // Back to the screen below: what a pushed screen's back button does.
    Q_INVOKABLE void popBack();
    void setNavigationController(NavigationController *controller);

    // Runs viewDidLoad() the first time; the navigation machinery calls it before showing.
    void loadViewIfNeeded();
    virtual void viewWillAppear() {}
    virtual void viewWillDisappear() {}
    // What the Escape key undoes on this screen before the stack is popped (a search bar left
    // open, say); false when there is nothing of the kind.
    virtual bool closeOwnLayer() { return false; }

signals:
    void titleChanged();
    void barItemsChanged();

protected:
    virtual void viewDidLoad() {}
    // A pushed screen's bar: the back glyph on the left, which pops this screen.
    void showBackButton();

private:
    QList<QObject *> leftItemObjects() const { return {m_leftItems.begin(), m_leftItems.end()}; }
    QList<QObject *> rightItemObjects() const { return {m_rightItems.begin(), m_rightItems.end()}; }

    QString m_title;
    QList<BarButtonItem *> m_leftItems;
    QList<BarButtonItem *> m_rightItems;
    QPointer<QObject> m_navigationController;
    bool m_loaded = false;
};

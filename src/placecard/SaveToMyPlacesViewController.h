#pragma once

#include "catalogue/MyPlacesLists.h"
#include "presentation/ViewController.h"
#include "richtext/RichString.h"

#include <QVariantList>

#include <functional>

class UserDefaults;

// The sheet that files a place in the user's lists: three toggles (favourite, visited, to
// visit), sharing, and one button that reads "cancel" until a toggle is touched and "done"
// after. Nothing is written until that button: closing the sheet another way loses the changes.
class SaveToMyPlacesViewController : public ViewController
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made through the Storyboard registry")
    Q_PROPERTY(QVariantList buttons READ buttons NOTIFY buttonsChanged)
    Q_PROPERTY(QString actionTitle READ actionTitle NOTIFY actionChanged)
    Q_PROPERTY(QString actionColor READ actionColor NOTIFY actionChanged)
    Q_PROPERTY(QString saveLabel READ saveLabel CONSTANT)

public:
    explicit SaveToMyPlacesViewController(UserDefaults &defaults, QObject *parent = nullptr);

    QUrl viewUrl() const override { return QUrl(QStringLiteral("qrc:/Velmora/placecard/SaveToMyPlacesView.qml")); }
    bool navigationBarHidden() const override { return true; }

    static constexpr qreal sheetHeight = 206;

    int rid = -1;
    std::function<void()> shareCallback;

    const MyPlacesLists &lists() const { return m_lists; }
    // Per toggle: {"list", "title" (rendered markup), "on", "name"}.
    QVariantList buttons() const { return m_buttons; }
    QString actionTitle() const { return m_actionTitle; }
    QString actionColor() const { return m_actionColor; }
    QString saveLabel() const;

    Q_INVOKABLE void toggleButtonTouched(int list);
    void favoriteButtonTouched() { toggleButtonTouched(MyPlacesLists::favoritos); }
    void visitedButtonTouched() { toggleButtonTouched(MyPlacesLists::visitados); }
    void toVisitButtonTouched() { toggleButtonTouched(MyPlacesLists::porVisitar); }
    Q_INVOKABLE void shareButtonTouched();
    Q_INVOKABLE void actionButtonTouched();

signals:
    void buttonsChanged();
    void actionChanged();

protected:
    void viewDidLoad() override;

private:
    void updateButtons();
    void showDone();

    UserDefaults &m_defaults;
    RichString R;
    MyPlacesLists m_lists;
    QVariantList m_buttons;
    QString m_actionTitle;
    QString m_actionColor;
};

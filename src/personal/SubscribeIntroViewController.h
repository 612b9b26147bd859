#pragma once

#include "personal/SubscribeProvincesDelegate.h"
#include "presentation/ViewController.h"

class Restaurants;
class UserDefaults;

// The one-time invitation to the SMS notifications: "not now", or on to the province choice,
// whose outcome it hands on to its own delegate.
class SubscribeIntroViewController : public ViewController, public SubscribeProvincesDelegate
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made through the Storyboard registry")
    Q_PROPERTY(QString introText READ introText NOTIFY localized)
    Q_PROPERTY(QString notNowText READ notNowText NOTIFY localized)
    Q_PROPERTY(QString yesSureText READ yesSureText NOTIFY localized)

public:
    SubscribeIntroViewController(Restaurants &restaurants, UserDefaults &defaults, QObject *parent = nullptr);

    QUrl viewUrl() const override { return QUrl(QStringLiteral("qrc:/Velmora/personal/SubscribeIntroView.qml")); }
    bool navigationBarHidden() const override { return true; }

    SubscribeProvincesDelegate *delegate = nullptr;

    QString introText() const { return qtTrId("subscribe_intro_text"); }
    QString notNowText() const { return qtTrId("subscribe_intro_not_now"); }
    QString yesSureText() const { return qtTrId("subscribe_intro_yes_sure"); }

    // Seen once shown, even if the app is killed on it: the invitation isn't repeated.
    void viewWillAppear() override;
    Q_INVOKABLE void yeahSureTouched();
    Q_INVOKABLE void cancelButtonTouched();

    void provinceSelectionDidCancel() override;
    void provinceSelectionDidFinish(const QSet<int> &provinces) override;

signals:
    void localized();

protected:
    void viewDidLoad() override;

private:
    Restaurants &m_restaurants;
    UserDefaults &m_defaults;
};

#pragma once

#include "personal/SubscribeProvincesDelegate.h"
#include "presentation/MessageComposer.h"
#include "presentation/ViewController.h"
#include "richtext/RichString.h"

#include <QSet>
#include <QVariantList>

class Restaurants;
class UserDefaults;

// The choice of provinces for the SMS notifications. The finish button shows only when the
// choice differs from what was sent last; it composes the message, and the choice is stored
// only once the message was really sent.
class SubscribeProvincesViewController : public ViewController
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made through the Storyboard registry")
    Q_PROPERTY(QVariantList provinces READ provinceRows NOTIFY provincesChanged)
    Q_PROPERTY(bool finishVisible READ finishVisible NOTIFY provincesChanged)
    Q_PROPERTY(QVariant finishTitle READ finishTitle NOTIFY localized)
    Q_PROPERTY(QString headerText READ headerText NOTIFY localized)
    Q_PROPERTY(QString selectAllText READ selectAllText NOTIFY localized)

public:
    struct ProvinceEntry {
        int id;
        QString name;
        bool selected;
    };

    SubscribeProvincesViewController(Restaurants &restaurants, UserDefaults &defaults, QObject *parent = nullptr);

    QUrl viewUrl() const override { return QUrl(QStringLiteral("qrc:/Velmora/personal/SubscribeProvincesView.qml")); }
    bool navigationBarHidden() const override { return true; }

    SubscribeProvincesDelegate *delegate = nullptr;

    const QList<ProvinceEntry> &provinces() const { return m_provinces; }
    QSet<int> currentSelection() const { return m_currentSelection; }
    QSet<int> selection() const;
    bool finishVisible() const { return selection() != m_currentSelection; }
    QVariant finishTitle() const { return QVariant::fromValue(m_finishTitle); }
    QString headerText() const;
    QString selectAllText() const;

    Q_INVOKABLE void didSelectRow(int row);
    Q_INVOKABLE void selectAllTouched();
    Q_INVOKABLE void finishButtonTouched();
    Q_INVOKABLE void closeButtonTouched();
    void subscribe(const QSet<int> &provinces);
    void commitSubscription();

    // The message: the localised intro, the token " &&0&", the ids ascending joined with "-".
    static QString messageBody(const QString &intro, const QSet<int> &provinces);

signals:
    void provincesChanged();
    void localized();

protected:
    void viewDidLoad() override;

private:
    QVariantList provinceRows() const;
    void localize();

    Restaurants &m_restaurants;
    UserDefaults &m_defaults;
    RichString R;
    QList<ProvinceEntry> m_provinces;
    QSet<int> m_currentSelection;
    QSet<int> m_pendingSelection;
    AttributedString m_finishTitle;
};

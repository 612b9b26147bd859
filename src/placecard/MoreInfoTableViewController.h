#pragma once

#include "catalogue/Records.h"
#include "presentation/ViewController.h"

#include <QUrl>
#include <QVariantList>

#include <optional>

class Restaurants;

enum class MoreInfoCellType { website, email, serviceTypes, placeOptions, paymentOptions, restGroup, chef, separator, advertising };

// A place's extended data: web page, e-mail addresses, service types, place options, payment
// options and restaurant group, each row only when it has something to say, and one ad last.
class MoreInfoTableViewController : public ViewController
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made through the Storyboard registry")
    Q_PROPERTY(QVariantList rows READ rows NOTIFY rowsChanged)
    Q_PROPERTY(int rid MEMBER rid)

public:
    explicit MoreInfoTableViewController(Restaurants &restaurants, QObject *parent = nullptr);

    QUrl viewUrl() const override { return QUrl(QStringLiteral("qrc:/Velmora/placecard/MoreInfoView.qml")); }

    int rid = -1;
    const QList<MoreInfoCellType> &cells() const { return m_cells; }
    const std::optional<Ad> &ad() const { return m_ad; }
    QVariantList rows() const { return m_rows; }

    // The place's page on the product's site: `website` is a path there; "x/y" becomes
    // "x/restaurant/y", under the site's base URL and the user's language.
    static QUrl websiteURL(const QString &website, const QString &siteBase, const QString &language);
    // A mail to the first address, with the place's name as subject when there is one.
    static QUrl emailURL(const QStringList &emails, const QString &placeName);

    Q_INVOKABLE void didSelectRow(int row);
    // The advertising cell was made: each making counts as a showing.
    Q_INVOKABLE void advertisingCellBuilt();

signals:
    void rowsChanged();
    // A tip ad asks for the fortune sheet; it lands with that screen.
    void tipRequested(const QString &text);

protected:
    void viewDidLoad() override;

private:
    void setupCells();

    Restaurants &m_restaurants;
    std::optional<MoreInfo> m_info;
    std::optional<Ad> m_ad;
    QList<MoreInfoCellType> m_cells;
    QVariantList m_rows;
};

#pragma once

#include "catalogue/Records.h"
#include "presentation/BackgroundReads.h"
#include "presentation/ViewController.h"
#include "richtext/RichString.h"

#include <QDateTime>
#include <QHash>
#include <QVariantList>

class Restaurants;

// The offers valid now. As the search screen's third tab (`rid` -1) it lists the province's
// offers, one section per place; pushed for one place it shows that place on top, then its
// offers.
class OfertasTableViewController : public ViewController
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made through the Storyboard registry")
    Q_PROPERTY(QVariantList rows READ rows NOTIFY rowsChanged)
    Q_PROPERTY(bool restaurantMode READ restaurantMode CONSTANT)
    // Set by whoever pushes it for one place, before it loads.
    Q_PROPERTY(int rid MEMBER rid)
    Q_PROPERTY(bool inertRestCard MEMBER inertRestCard)

public:
    explicit OfertasTableViewController(Restaurants &restaurants, QObject *parent = nullptr);
    ~OfertasTableViewController() override;

    QUrl viewUrl() const override { return QUrl(QStringLiteral("qrc:/Velmora/browse/OffersView.qml")); }

    // Set before the screen loads by whoever pushes it.
    int rid = -1;
    bool inertRestCard = false;
    bool restaurantMode() const { return rid != -1; }

    // Sections of (title, offers), in the order of the places' ids.
    using Sections = QList<std::pair<QString, QList<Oferta>>>;
    const Sections &ofertas() const { return m_ofertas; }
    // Flat rows for the view: {"kind": "card" | "header" | "offer", ...}.
    QVariantList rows() const { return m_rows; }
    // An offer row's styled text, laid out when its row is first shown: a province can have
    // thousands of offers, and laying them all out at once held the main thread.
    Q_INVOKABLE QVariant offerText(int row);
    // The offers valid at `now`, one section a place.
    static Sections validSections(QList<Oferta> offers, const QDateTime &now);
    Q_INVOKABLE void didSelectRow(int row);
    Q_INVOKABLE void close();

    // A price as the cell draws it: the whole part with its point, and the cents on their own
    // ("7." and "50" for 7.5); both empty for no price.
    static std::pair<QString, QString> priceParts(double price);

    // Reads the offers off the main thread, the rows shown until then staying: at load (unless
    // `readOnLoad` is false, for a screen that asks later), for a new catalogue or province.
    void reloadOffersInBackground();
    bool readOnLoad = true;

signals:
    void rowsChanged();

protected:
    void viewDidLoad() override;

private:
    int province() const;
    void reloadOffers();
    void showOffers(Sections sections);

    Restaurants &m_restaurants;
    RichString R;
    Sections m_ofertas;
    QVariantList m_rows;
    QHash<int, QVariant> m_renderedOffers; // by row
    BackgroundReads m_reads;
};

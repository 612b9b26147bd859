#pragma once

#include "catalogue/Records.h"
#include "presentation/BackgroundReads.h"
#include "presentation/ViewController.h"
#include "richtext/RichString.h"

#include <QVariantList>

class Restaurants;

// The discover feed, the search screen's first tab: the province's promoted places as
// full-width pictures, with an ad after every second one and the remaining ads at the end.
class DescubreTableViewController : public ViewController
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the search screen")
    Q_PROPERTY(QVariantList rows READ rows NOTIFY rowsChanged)

public:
    struct DiscoverRow {
        enum class Kind { promo, ad };
        Kind kind;
        int index; // into promos or ads
        bool operator==(const DiscoverRow &) const = default;
    };

    explicit DescubreTableViewController(Restaurants &restaurants, QObject *parent = nullptr);

    QUrl viewUrl() const override { return QUrl(QStringLiteral("qrc:/Velmora/browse/DiscoverView.qml")); }

    // P0 P1 A0 P2 P3 A1 ... then the ads that are left.
    static QList<DiscoverRow> mix(int promoCount, int adCount);
    // How far every picture travels, from -0.5 to 0.5, for the feed's scroll position: all of
    // them together with the place in the feed, not with their own place on the screen.
    static double parallaxFactor(double offset, double frameHeight, double contentHeight);
    Q_INVOKABLE double parallax(double offset, double frameHeight, double contentHeight) const
    {
        return parallaxFactor(offset, frameHeight, contentHeight);
    }

    const QList<DiscoverRow> &discoverRows() const { return m_rows; }
    // For the view: {"kind", "picture", and for a promo "rid", "name", "subtitle"}.
    QVariantList rows() const { return m_items; }
    // Reads and shows the feed at once (a new language); `reloadInBackground` reads it off the
    // main thread, the rows shown until then staying: at load (unless `readOnLoad` is false,
    // for a screen that asks later) and for a new catalogue or province.
    void reload();
    void reloadInBackground();
    bool readOnLoad = true;
    Q_INVOKABLE void didSelectRow(int row);
    // A row's cell was made (again, when scrolled back): an ad's showing counts each time.
    Q_INVOKABLE void rowConfigured(int row);

signals:
    void rowsChanged();
    // A tip ad asks for the fortune sheet; it lands with that screen.
    void tipRequested(const QString &text);

protected:
    void viewDidLoad() override;

private:
    // What the feed shows, as read from the catalogue.
    struct Feed {
        QList<Promo> promos;
        QList<Ad> ads;
        QList<std::optional<Brief>> briefs; // one a promo
    };
    static Feed readFeed(Restaurants &restaurants, int province);
    void showFeed(const Feed &feed);

    Restaurants &m_restaurants;
    RichString R;
    QList<Promo> m_promos;
    QList<Ad> m_ads;
    QList<DiscoverRow> m_rows;
    QVariantList m_items;
    BackgroundReads m_reads;
};

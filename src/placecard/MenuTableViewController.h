#pragma once

#include "catalogue/Records.h"
#include "presentation/ViewController.h"

#include <QSet>
#include <QVariantList>

#include <optional>

class Restaurants;

// A place's menu as an accordion: the note on top, then a header per section that opens and
// closes its dishes with their prices. Any number of sections may be open; the first starts open.
class MenuTableViewController : public ViewController
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made through the Storyboard registry")
    Q_PROPERTY(QVariantList rows READ rows NOTIFY rowsChanged)
    Q_PROPERTY(int rid MEMBER rid)

public:
    explicit MenuTableViewController(Restaurants &restaurants, QObject *parent = nullptr);

    QUrl viewUrl() const override { return QUrl(QStringLiteral("qrc:/Velmora/placecard/MenuView.qml")); }

    int rid = -1;
    const std::optional<Menu> &menu() const { return m_menu; }
    const QSet<int> &openSections() const { return m_openSections; }

    // Flat rows for the view: {"kind": "menu-desc-cell" | "menu-header-cell" | "menu-entry-cell", ...}.
    QVariantList rows() const { return m_rows; }
    // A price as the menu shows it: two decimals in the user's number format, no currency; empty
    // for a dish without a price (0, negative, or none at all).
    static QString priceText(double price);

    // Only a section's header reacts: it opens or closes the section.
    Q_INVOKABLE void didSelectRow(int row);

signals:
    void rowsChanged();
    // The view brings this row to the top, 0.3 s after a section opened.
    void scrollToRow(int row);

protected:
    void viewDidLoad() override;

private:
    void buildRows();

    Restaurants &m_restaurants;
    std::optional<Menu> m_menu;
    QSet<int> m_openSections;
    QVariantList m_rows;
};

#pragma once

#include "catalogue/Records.h"
#include "presentation/ViewController.h"
#include "richtext/RichString.h"

#include <QColor>
#include <QHash>
#include <QList>
#include <QVariantList>

#include <memory>
#include <optional>

class PagedPicturesProvider;
class Restaurants;
class UserDefaults;

// The kind of one row of the card, in the order of their values.
enum class LugaresCellType {
    picture, opinions, infoHeader, outOfService, address, prices, cuisines, horario, call, description,
    comments, gallery, offers, menu, moreInfo, separator, notes, giftsAndReservations, myPlaces, advertising
};

// The card of one place: a table of rows whose kinds are chosen once, when the card loads, from
// the place's record; the header picture that stretches when pulled; the bar that turns from a
// translucent grey to the brand colour as the picture passes under it; and every action on the
// place (ring, map, menu, offers, more-info, gallery, note, lists, share).
class LugarTableViewController : public ViewController
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made through the Storyboard registry")
    Q_PROPERTY(QVariantList rows READ rows CONSTANT)
    Q_PROPERTY(int rid READ rid CONSTANT)
    Q_PROPERTY(bool hasGalleryPicture READ hasGalleryPicture CONSTANT)
    Q_PROPERTY(QString titleText READ titleText NOTIFY titleTextChanged)
    Q_PROPERTY(QColor barColor READ barColor NOTIFY barColorChanged)
    Q_PROPERTY(bool barTranslucent READ barTranslucent NOTIFY barColorChanged)
    Q_PROPERTY(qreal barMaxY MEMBER barMaxY)
    Q_PROPERTY(qreal galleryImageTop READ galleryImageTop NOTIFY scrollStateChanged)
    Q_PROPERTY(qreal profilePicY READ profilePicY NOTIFY scrollStateChanged)
    Q_PROPERTY(qreal lastCellBottom READ lastCellBottom NOTIFY scrollStateChanged)
    Q_PROPERTY(qreal lastCellTop READ lastCellTop NOTIFY scrollStateChanged)
    Q_PROPERTY(QString noteText READ noteText NOTIFY noteChanged)
    Q_PROPERTY(bool notePlaceholderVisible READ notePlaceholderVisible NOTIFY noteChanged)

public:
    LugarTableViewController(Restaurants &restaurants, UserDefaults &defaults, QObject *parent = nullptr);

    QUrl viewUrl() const override { return QUrl(QStringLiteral("qrc:/Velmora/placecard/LugarView.qml")); }

    // Set by whoever opens the card, before it loads.
    std::optional<RestaurantInfo> restInfo;

    int rid() const { return restInfo ? restInfo->id : -1; }
    const QList<LugaresCellType> &cells() const { return m_cells; }
    const QList<int> &gallery() const { return m_gallery; }
    const std::optional<Ad> &ad() const { return m_ad; }
    bool hasGalleryPicture() const { return !m_gallery.isEmpty(); }
    // One map per row for the view: "kind" (the cell's reuse identifier), "type", and its texts.
    QVariantList rows() const { return m_rows; }

    static QString reuseIdentifier(LugaresCellType type);
    static QString typeName(LugaresCellType type);
    // The out-of-service row's second line: the trimmed reason, or "unknown" below 2 bytes.
    static QString outOfServiceReasonText(const QString &reason);

    Q_INVOKABLE void didSelectRow(int row);
    // The advertising cell was made: each making counts as a showing.
    Q_INVOKABLE void advertisingCellBuilt();
    Q_INVOKABLE qreal estimatedHeightForRow(int row) const { return m_heightCache.value(row, 50); }
    Q_INVOKABLE void willDisplayRow(int row, qreal height);

    // The scrolling rules. `y` is the content offset, negative while pulled past the top.
    Q_INVOKABLE void scrollViewDidScroll(qreal y, qreal contentHeight, qreal frameHeight);
    void matchBarColorToScrollPosition(bool force);
    void stretchPictureOnScroll(qreal y);
    void moveLastCellToBottom();
    QColor barColor() const { return m_barColor; }
    bool barTranslucent() const { return m_barTranslucent; }
    qreal galleryImageTop() const { return m_galleryImageTop; }
    qreal profilePicY() const { return m_profilePicY; }
    qreal lastCellBottom() const { return m_lastCellBottom; }
    qreal lastCellTop() const { return m_lastCellTop; }
    qreal barMaxY = 56; // the bar's lower edge over the table, given by the view

    // Segues by identifier; a refused or unknown one does nothing and answers false.
    bool shouldPerformSegue(const QString &identifier) const;
    Q_INVOKABLE bool performSegue(const QString &identifier);

    Q_INVOKABLE void navbarSwiped();
    QString titleText() const { return m_titleText; }
    Q_INVOKABLE void imageTapped();
    Q_INVOKABLE void imageSwipedLeft();
    Q_INVOKABLE void dismiss();
    Q_INVOKABLE void shareButtonTouched() { showActivities(); }
    // Hands the name and address to the platform's sharing; here, the clipboard.
    Q_INVOKABLE void showActivities();

    // The private note, one paragraph kept under "notes_<id>".
    QString noteText() const { return m_noteText; }
    bool notePlaceholderVisible() const { return m_notePlaceholderVisible; }
    Q_INVOKABLE void textViewDidBeginEditing();
    // False for a return key: it ends the editing instead of breaking the line.
    Q_INVOKABLE bool textViewShouldChangeText(const QString &replacement);
    Q_INVOKABLE void textViewDidEndEditing(const QString &text);
    QString noteKey() const;

    void viewWillAppear() override;
    // The hidden swipe on the title works until another screen covers the card.
    void viewWillDisappear() override;

signals:
    void titleTextChanged();
    void barColorChanged();
    void scrollStateChanged();
    void noteChanged();
    void noteEditingShouldEnd();
    // The place's name and address went to the clipboard: the view says so.
    void shared(const QString &text);
    // A tip ad asks for the fortune sheet; it lands with that screen.
    void tipRequested(const QString &text);

protected:
    void viewDidLoad() override;

private:
    void setupCells();
    QVariantMap rowFor(LugaresCellType type) const;
    void presentSheet(ViewController *sheet, qreal height);

    Restaurants &m_restaurants;
    UserDefaults &m_defaults;
    RichString R;
    QList<LugaresCellType> m_cells;
    QList<int> m_gallery;
    std::shared_ptr<PagedPicturesProvider> m_galleryProvider;
    std::optional<Ad> m_ad;
    QVariantList m_rows;
    QHash<int, qreal> m_heightCache;
    int m_navbarSwipeCount = 0;
    bool m_titleSwipeEnabled = true;
    QString m_titleText;
    QString m_noteText;
    bool m_notePlaceholderVisible = true;

    // Scrolling state.
    qreal m_contentY = 0;
    qreal m_contentHeight = 0;
    qreal m_frameHeight = 0;
    qreal m_galleryImageTop = 0;
    qreal m_profilePicY = 0;
    qreal m_originalProfilePicY = -100000;
    qreal m_lastCellBottom = 0;
    qreal m_lastCellTop = 0;
    bool m_lastCellBuilt = false;
    float m_startHue = -1, m_startSaturation = 0, m_startBrightness = 0, m_startAlpha = 0;
    float m_finalHue = -1, m_finalSaturation = 0, m_finalBrightness = 0, m_finalAlpha = 0;
    QColor m_lastBarColor;
    QColor m_barColor;
    bool m_barTranslucent = true;
};

#pragma once

#include "PagedPicturesProvider.h"
#include "presentation/ViewController.h"

#include <QVariantMap>

#include <memory>

// A place's pictures, full screen, one page each: swiped through, zoomed with two fingers, a
// double tap or the wheel, with the caption below; a tap hides or shows the bars and captions.
// The one screen that follows the window into landscape.
class GalleryViewController : public ViewController
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made through the Storyboard registry")
    Q_PROPERTY(int pageCount READ pageCount NOTIFY providerChanged)
    Q_PROPERTY(int currentPage READ currentPage WRITE setCurrentPage NOTIFY currentPageChanged)
    Q_PROPERTY(bool pageIndicatorVisible READ pageIndicatorVisible NOTIFY providerChanged)
    Q_PROPERTY(QString pageIndicator READ pageIndicator NOTIFY currentPageChanged)
    Q_PROPERTY(QString restaurantName READ restaurantName CONSTANT)
    Q_PROPERTY(bool uihidden READ uihidden NOTIFY uihiddenChanged)

public:
    explicit GalleryViewController(QObject *parent = nullptr);

    QUrl viewUrl() const override { return QUrl(QStringLiteral("qrc:/Velmora/placecard/GalleryView.qml")); }
    bool navigationBarHidden() const override { return true; }

    // Set by whoever opens the gallery, before it shows.
    void setProvider(std::shared_ptr<PagedPicturesProvider> provider);
    void setRestaurantName(const QString &name) { m_restaurantName = name; }

    int pageCount() const { return m_provider ? m_provider->pageCount() : 0; }
    int currentPage() const { return m_currentPage; }
    void setCurrentPage(int page);
    bool pageIndicatorVisible() const { return pageCount() > 1; }
    QString pageIndicator() const;
    QString restaurantName() const { return m_restaurantName; }
    bool uihidden() const { return m_uihidden; }

    // The pages around one, or 0 where there is none: pages don't wrap.
    Q_INVOKABLE int pageAfter(int page) const { return page < pageCount() ? page + 1 : 0; }
    Q_INVOKABLE int pageBefore(int page) const { return page < 2 ? 0 : page - 1; }
    Q_INVOKABLE QString sourceForPage(int page) const;
    Q_INVOKABLE QString textForPage(int page) const;
    // {fit, fill, minimum, maximum} for a picture of `picture` size in a view of `view` size.
    Q_INVOKABLE QVariantMap zoomFor(QSizeF view, QSizeF picture) const;
    // {x, y}: the margins that keep a picture smaller than the view in its middle.
    Q_INVOKABLE QVariantMap insetsFor(qreal zoom, QSizeF view, QSizeF picture) const;
    Q_INVOKABLE qreal doubleTapZoom(qreal zoom, QSizeF view, QSizeF picture) const;

    Q_INVOKABLE void singleTap();
    // The place's name, the page's caption and its picture, to the clipboard.
    Q_INVOKABLE void shareButtonTouched();
    Q_INVOKABLE void close();

signals:
    void providerChanged();
    void currentPageChanged();
    void uihiddenChanged();
    void shared();

private:
    std::shared_ptr<PagedPicturesProvider> m_provider;
    QString m_restaurantName;
    int m_currentPage = 1;
    bool m_uihidden = false;
};

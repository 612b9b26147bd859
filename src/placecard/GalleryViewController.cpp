#include "GalleryViewController.h"

#include "PictureZoom.h"
#include "presentation/NavigationController.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

GalleryViewController::GalleryViewController(QObject *parent)
    : ViewController(parent)
{
}

void GalleryViewController::setProvider(std::shared_ptr<PagedPicturesProvider> provider)
{
    m_provider = std::move(provider);
    m_currentPage = 1;
    emit providerChanged();
    emit currentPageChanged();
}

void GalleryViewController::setCurrentPage(int page)
{
    if (page < 1 || page > pageCount() || page == m_currentPage)
        return;
    m_currentPage = page;
    emit currentPageChanged();
}

QString GalleryViewController::pageIndicator() const
{
    return QStringLiteral("%1 / %2").arg(m_currentPage).arg(pageCount());
}

QString GalleryViewController::sourceForPage(int page) const { return m_provider ? m_provider->sourceForPage(page) : QString(); }
QString GalleryViewController::textForPage(int page) const { return m_provider ? m_provider->textForPage(page) : QString(); }

QVariantMap GalleryViewController::zoomFor(QSizeF view, QSizeF picture) const
{
    const PictureZoom zoom = PictureZoom::forSize(view, picture);
    return {{QStringLiteral("fit"), zoom.fit}, {QStringLiteral("fill"), zoom.fill},
            {QStringLiteral("minimum"), zoom.minimum()}, {QStringLiteral("maximum"), zoom.maximum()}};
}

QVariantMap GalleryViewController::insetsFor(qreal zoom, QSizeF view, QSizeF picture) const
{
    const QSizeF insets = PictureZoom::forSize(view, picture).insets(zoom, view, picture);
    return {{QStringLiteral("x"), insets.width()}, {QStringLiteral("y"), insets.height()}};
}

qreal GalleryViewController::doubleTapZoom(qreal zoom, QSizeF view, QSizeF picture) const
{
    return PictureZoom::forSize(view, picture).doubleTapZoom(zoom);
}

void GalleryViewController::singleTap()
{
    m_uihidden = !m_uihidden;
    emit uihiddenChanged();
}

void GalleryViewController::shareButtonTouched()
{
    if (!m_provider)
        return;
    const QImage picture = m_provider->imageForPage(m_currentPage);
    if (picture.isNull())
        return; // a page without its picture has nothing to share
    auto *data = new QMimeData;
    data->setText(m_restaurantName + QLatin1Char('\n') + m_provider->textForPage(m_currentPage));
    data->setImageData(picture);
    if (QClipboard *clipboard = QGuiApplication::clipboard())
        clipboard->setMimeData(data);
    else
        delete data;
    emit shared();
}

void GalleryViewController::close()
{
    if (NavigationController *navigation = navigationController())
        navigation->dismissViewController(true);
}

#include "PlacePictureProvider.h"

#include "catalogue/Restaurants.h"

PlacePictureProvider::PlacePictureProvider()
    : QQuickImageProvider(QQuickImageProvider::Image, QQuickImageProvider::ForceAsynchronousImageLoading)
{
}

QImage PlacePictureProvider::requestImage(const QString &id, QSize *size, const QSize &requestedSize)
{
    const QStringList parts = id.split(QLatin1Char('/'));
    QImage image;
    bool ok = false;
    const int placeId = parts.value(1).toInt(&ok);
    const QString kind = parts.value(0);
    if (ok && kind == QLatin1String("profile"))
        image = QImage::fromData(Restaurants::shared().profileImage(placeId));
    else if (ok && kind == QLatin1String("promo"))
        image = QImage::fromData(Restaurants::shared().promoImage(placeId));
    else if (ok && kind == QLatin1String("gallery"))
        image = QImage::fromData(Restaurants::shared().galleryImage(placeId));
    else if (ok && kind == QLatin1String("ad"))
        image = QImage::fromData(Restaurants::shared().adImage(placeId));
    // A view may ask for one side only (the other 0): the picture keeps its proportions. A
    // picture is made smaller to the size asked, never larger: that would only cost memory.
    if (!image.isNull() && requestedSize.width() > 0 && requestedSize.height() > 0) {
        const QSize covering = image.size().scaled(requestedSize, Qt::KeepAspectRatioByExpanding);
        if (covering.width() < image.width())
            image = image.scaled(covering, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    } else if (!image.isNull() && requestedSize.width() > 0 && requestedSize.width() < image.width()) {
        image = image.scaledToWidth(requestedSize.width(), Qt::SmoothTransformation);
    } else if (!image.isNull() && requestedSize.height() > 0 && requestedSize.height() < image.height()) {
        image = image.scaledToHeight(requestedSize.height(), Qt::SmoothTransformation);
    }
    if (size)
        *size = image.size();
    return image;
}

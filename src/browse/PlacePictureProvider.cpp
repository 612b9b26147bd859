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
    if (parts.value(0) == QLatin1String("profile") && ok)
        image = QImage::fromData(Restaurants::shared().profileImage(placeId));
    if (!image.isNull() && requestedSize.isValid())
        image = image.scaled(requestedSize, Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation);
    if (size)
        *size = image.size();
    return image;
}

#include "PagedPicturesProvider.h"

#include "catalogue/Restaurants.h"

QImage RestaurantPicturesProvider::imageForPage(int page) const
{
    return has(page) ? QImage::fromData(m_restaurants.galleryImage(imageIds.at(page - 1))) : QImage();
}

QString RestaurantPicturesProvider::textForPage(int page) const
{
    return has(page) ? m_restaurants.galleryImageCaption(imageIds.at(page - 1)) : QString();
}

QString RestaurantPicturesProvider::sourceForPage(int page) const
{
    return has(page) ? QStringLiteral("image://places/gallery/%1").arg(imageIds.at(page - 1)) : QString();
}

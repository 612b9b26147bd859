#pragma once

#include <QImage>
#include <QQuickImageProvider>

class Restaurants;

// The card's header for a place without gallery: its profile picture, sharp, over a blurred copy
// of itself. Both are made once per place and kept in UIImageCache::shared() under "prof<id>"
// and "blur<id>"; a place without a readable picture uses the "noimage" picture for both.
namespace HeaderPictures {

QImage profilePicture(Restaurants &restaurants, int id);
// Blurs the profile picture on a miss: never call it on the main thread.
QImage blurredPicture(Restaurants &restaurants, int id);

// A Gaussian blur whose edges are clamped (the border pixels repeat), so they don't darken;
// the result has the source's size.
QImage gaussianBlur(const QImage &source, qreal radius);
QImage noImagePicture();

}

// Serves "image://placecard/prof/<id>" and "image://placecard/blur/<id>" on the image loader's
// own thread, so neither the decoding nor the blur ever holds up a frame.
class HeaderPictureProvider : public QQuickImageProvider
{
public:
    HeaderPictureProvider();
    QImage requestImage(const QString &id, QSize *size, const QSize &requestedSize) override;
};

#pragma once

#include <QQuickImageProvider>

// Serves the catalogue's pictures to QML: "image://places/profile/<place id>", and by picture id
// ".../gallery/<id>", ".../promo/<id>", ".../ad/<id>". A missing or undecodable picture gives a
// null image, and the view shows its stand-in.
class PlacePictureProvider : public QQuickImageProvider
{
public:
    PlacePictureProvider();
    QImage requestImage(const QString &id, QSize *size, const QSize &requestedSize) override;
};

#pragma once

#include <QQuickImageProvider>

// Serves place pictures to QML from the catalogue: "image://places/profile/<id>". A place
// without a picture gives a null image, and the card shows its stand-in.
class PlacePictureProvider : public QQuickImageProvider
{
public:
    PlacePictureProvider();
    QImage requestImage(const QString &id, QSize *size, const QSize &requestedSize) override;
};

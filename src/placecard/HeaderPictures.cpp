#include "HeaderPictures.h"

#include "UIImageCache.h"
#include "catalogue/Restaurants.h"

#include <QLinearGradient>
#include <QPainter>

#include <cmath>
#include <vector>

namespace HeaderPictures {

namespace {
QString key(const char *prefix, int id) { return QString::fromLatin1(prefix) + QString::number(id); }

// One pass of the kernel along rows (or, transposed, columns), repeating the edge pixels.
QImage blurPass(const QImage &in, const std::vector<float> &kernel, bool horizontal)
{
    const int radius = int(kernel.size() / 2);
    QImage out(in.size(), QImage::Format_ARGB32_Premultiplied);
    const int w = in.width(), h = in.height();
    for (int y = 0; y < h; ++y) {
        auto *target = reinterpret_cast<QRgb *>(out.scanLine(y));
        for (int x = 0; x < w; ++x) {
            float sum[4] = {0, 0, 0, 0};
            for (int k = -radius; k <= radius; ++k) {
                const int sx = horizontal ? std::clamp(x + k, 0, w - 1) : x;
                const int sy = horizontal ? y : std::clamp(y + k, 0, h - 1);
                const QRgb pixel = reinterpret_cast<const QRgb *>(in.constScanLine(sy))[sx];
                const float weight = kernel[size_t(k + radius)];
                sum[0] += weight * qRed(pixel);
                sum[1] += weight * qGreen(pixel);
                sum[2] += weight * qBlue(pixel);
                sum[3] += weight * qAlpha(pixel);
            }
            target[x] = qRgba(int(sum[0] + 0.5f), int(sum[1] + 0.5f), int(sum[2] + 0.5f), int(sum[3] + 0.5f));
        }
    }
    return out;
}
}

QImage gaussianBlur(const QImage &source, qreal radius)
{
    if (source.isNull() || radius <= 0)
        return source;
    // The radius is the standard deviation, the kernel reaches three of them.
    const int reach = int(std::ceil(radius * 3));
    std::vector<float> kernel(size_t(2 * reach + 1));
    float total = 0;
    for (int k = -reach; k <= reach; ++k)
        total += kernel[size_t(k + reach)] = float(std::exp(-(k * k) / (2 * radius * radius)));
    for (float &weight : kernel)
        weight /= total;
    const QImage premultiplied = source.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    return blurPass(blurPass(premultiplied, kernel, true), kernel, false);
}

QImage noImagePicture()
{
    QImage picture(320, 230, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&picture);
    QLinearGradient warm(0, 0, 320, 230);
    warm.setColorAt(0, QColor(0xe9, 0xdf, 0xcf));
    warm.setColorAt(1, QColor(0xc9, 0xb8, 0x9c));
    painter.fillRect(picture.rect(), warm);
    // A plate seen from above: enough to read as "no photo of this place" and not as a fault.
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(255, 255, 255, 150));
    painter.drawEllipse(QPointF(160, 115), 62, 62);
    painter.setBrush(QColor(255, 255, 255, 90));
    painter.drawEllipse(QPointF(160, 115), 44, 44);
    painter.end();
    return picture;
}

QImage profilePicture(Restaurants &restaurants, int id)
{
    const QString profKey = key("prof", id);
    QImage picture = UIImageCache::shared().get(profKey);
    if (!picture.isNull())
        return picture;
    picture = QImage::fromData(restaurants.profileImage(id));
    if (picture.isNull()) // no picture, or data that doesn't decode
        picture = noImagePicture();
    // Double density: the picture draws at half its pixel size, as a phone's @2x asset would.
    picture.setDevicePixelRatio(2);
    UIImageCache::shared().set(profKey, picture);
    return picture;
}

QImage blurredPicture(Restaurants &restaurants, int id)
{
    const QString blurKey = key("blur", id);
    QImage picture = UIImageCache::shared().get(blurKey);
    if (!picture.isNull())
        return picture;
    QImage profile = profilePicture(restaurants, id);
    profile.setDevicePixelRatio(1);
    picture = gaussianBlur(profile, 3);
    UIImageCache::shared().set(blurKey, picture);
    return picture;
}

}

HeaderPictureProvider::HeaderPictureProvider()
    : QQuickImageProvider(QQuickImageProvider::Image, QQuickImageProvider::ForceAsynchronousImageLoading)
{
}

QImage HeaderPictureProvider::requestImage(const QString &id, QSize *size, const QSize &)
{
    const QString kind = id.section(QLatin1Char('/'), 0, 0);
    bool ok = false;
    const int placeId = id.section(QLatin1Char('/'), 1, 1).toInt(&ok);
    QImage picture;
    if (ok && kind == QLatin1String("prof"))
        picture = HeaderPictures::profilePicture(Restaurants::shared(), placeId);
    else if (ok && kind == QLatin1String("blur"))
        picture = HeaderPictures::blurredPicture(Restaurants::shared(), placeId);
    if (size)
        *size = picture.size();
    return picture;
}

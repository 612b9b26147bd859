#include "DemoPictures.h"

#include <QBuffer>
#include <QImage>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>

namespace {

double unit(std::mt19937 &random)
{
    return double(random()) / double(std::mt19937::max());
}

double between(std::mt19937 &random, double low, double high)
{
    return low + (high - low) * unit(random);
}

QColor pick(std::mt19937 &random, std::initializer_list<QColor> colors)
{
    return *(colors.begin() + random() % colors.size());
}

QByteArray jpeg(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "JPG", 58);
    return bytes;
}

// Soft out-of-focus lights, as behind a subject shot with a wide aperture.
void bokeh(QPainter &p, std::mt19937 &random, int width, int height, const QColor &tint, int count)
{
    for (int i = 0; i < count; ++i) {
        const QPointF centre(between(random, 0, width), between(random, 0, height * 0.45));
        const double radius = between(random, width * 0.02, width * 0.07);
        QRadialGradient glow(centre, radius);
        QColor core = tint;
        core.setAlphaF(float(between(random, 0.25, 0.55)));
        QColor edge = tint;
        edge.setAlphaF(0);
        glow.setColorAt(0, core);
        glow.setColorAt(1, edge);
        p.setBrush(glow);
        p.setPen(Qt::NoPen);
        p.drawEllipse(centre, radius, radius);
    }
}

void vignette(QPainter &p, int width, int height)
{
    QRadialGradient shade(QPointF(width / 2.0, height / 2.0), width * 0.75);
    shade.setColorAt(0.55, QColor(0, 0, 0, 0));
    shade.setColorAt(1, QColor(0, 0, 0, 150));
    p.fillRect(0, 0, width, height, shade);
}

void woodTable(QPainter &p, std::mt19937 &random, int width, int height)
{
    const QColor wood = pick(random, {QColor(120, 72, 40), QColor(92, 58, 36), QColor(140, 96, 60), QColor(70, 48, 34)});
    QLinearGradient base(0, 0, 0, height);
    base.setColorAt(0, wood.darker(160));
    base.setColorAt(0.45, wood);
    base.setColorAt(1, wood.darker(125));
    p.fillRect(0, 0, width, height, base);
    for (int i = 0; i < 26; ++i) {
        const double y = between(random, height * 0.35, height);
        QColor grain = wood.darker(int(between(random, 105, 135)));
        grain.setAlpha(90);
        p.setPen(QPen(grain, between(random, 0.6, 2.2)));
        QPainterPath line(QPointF(0, y));
        line.cubicTo(width * 0.3, y + between(random, -6, 6), width * 0.7, y + between(random, -6, 6), width, y);
        p.drawPath(line);
    }
}

// A round plate seen at an angle, with food heaped on it.
void plate(QPainter &p, std::mt19937 &random, int width, int height)
{
    const QPointF centre(width * between(random, 0.42, 0.58), height * between(random, 0.58, 0.66));
    const double rx = width * between(random, 0.28, 0.34);
    const double ry = rx * 0.55;
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(0, 0, 0, 80));
    p.drawEllipse(centre + QPointF(rx * 0.06, ry * 0.16), rx * 1.02, ry * 1.02);
    QRadialGradient china(centre - QPointF(rx * 0.3, ry * 0.4), rx * 1.3);
    china.setColorAt(0, QColor(255, 255, 252));
    china.setColorAt(1, QColor(214, 210, 200));
    p.setBrush(china);
    p.drawEllipse(centre, rx, ry);
    p.setBrush(QColor(238, 235, 228));
    p.drawEllipse(centre, rx * 0.72, ry * 0.72);

    static const QColor foods[] = {
        QColor(246, 240, 222), // rice
        QColor(60, 36, 30),    // black beans
        QColor(214, 160, 60),  // tostones
        QColor(168, 74, 42),   // ropa vieja
        QColor(226, 120, 70),  // shrimp
        QColor(96, 150, 60),   // salad
        QColor(230, 196, 90),  // yuca
        QColor(180, 40, 40),   // tomato
    };
    const int portions = 4 + int(random() % 3);
    for (int i = 0; i < portions; ++i) {
        const QColor food = foods[random() % (sizeof foods / sizeof *foods)];
        const QPointF at = centre + QPointF(between(random, -rx * 0.38, rx * 0.38), between(random, -ry * 0.35, ry * 0.3));
        const double size = rx * between(random, 0.2, 0.34);
        for (int piece = 0; piece < 9; ++piece) {
            const QPointF bit = at + QPointF(between(random, -size * 0.6, size * 0.6), between(random, -size * 0.3, size * 0.3));
            const double r = size * between(random, 0.25, 0.5);
            QRadialGradient lit(bit - QPointF(r * 0.3, r * 0.4), r * 1.4);
            lit.setColorAt(0, food.lighter(135));
            lit.setColorAt(1, food.darker(135));
            p.setBrush(lit);
            p.drawEllipse(bit, r, r * 0.7);
        }
    }
    // A sprig of herbs and a lime wedge finish the dish.
    p.setBrush(QColor(60, 130, 50));
    for (int leaf = 0; leaf < 4; ++leaf)
        p.drawEllipse(centre + QPointF(between(random, -rx * 0.2, rx * 0.2), -ry * between(random, 0.2, 0.4)), rx * 0.05, ry * 0.04);
    p.setBrush(QColor(170, 205, 70));
    p.drawPie(QRectF(centre.x() + rx * 0.35, centre.y() - ry * 0.1, rx * 0.22, ry * 0.3), 0, 180 * 16);
}

}

namespace DemoPictures {

QByteArray dish(std::mt19937 &random, int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    woodTable(p, random, width, height);
    bokeh(p, random, width, height, pick(random, {QColor(255, 200, 120), QColor(255, 170, 90), QColor(255, 230, 170)}), 14);
    plate(p, random, width, height);
    vignette(p, width, height);
    p.end();
    return jpeg(image);
}

QByteArray terrace(std::mt19937 &random, int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky(0, 0, 0, height);
    sky.setColorAt(0, QColor(40, 60, 120));
    sky.setColorAt(0.55, pick(random, {QColor(240, 140, 90), QColor(250, 170, 110), QColor(220, 110, 100)}));
    sky.setColorAt(1, QColor(60, 40, 40));
    p.fillRect(0, 0, width, height, sky);
    // Sea and a row of palms against the sunset.
    p.fillRect(QRectF(0, height * 0.55, width, height * 0.2), QColor(40, 70, 110, 200));
    p.setPen(Qt::NoPen);
    p.setBrush(QColor(25, 20, 25));
    for (int palm = 0; palm < 3; ++palm) {
        const double x = between(random, width * 0.05, width * 0.95);
        p.drawRect(QRectF(x, height * 0.25, width * 0.008, height * 0.5));
        for (int frond = 0; frond < 6; ++frond) {
            p.save();
            p.translate(x, height * 0.25);
            p.rotate(frond * 60 + between(random, -10, 10));
            p.drawEllipse(QRectF(0, -height * 0.015, width * 0.09, height * 0.03));
            p.restore();
        }
    }
    bokeh(p, random, width, height, QColor(255, 220, 150), 18);
    // Tables and the warm string lights of the terrace.
    p.setBrush(QColor(50, 32, 28));
    p.drawRect(QRectF(0, height * 0.75, width, height * 0.25));
    for (int table = 0; table < 4; ++table) {
        const double x = width * (0.12 + 0.25 * table) + between(random, -10, 10);
        p.setBrush(QColor(235, 230, 220));
        p.drawEllipse(QPointF(x, height * 0.82), width * 0.08, height * 0.035);
        p.setBrush(QColor(255, 200, 110));
        p.drawEllipse(QPointF(x, height * 0.79), width * 0.008, height * 0.015);
    }
    vignette(p, width, height);
    p.end();
    return jpeg(image);
}

QByteArray banner(std::mt19937 &random, int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    const QColor brand = pick(random, {QColor(217, 91, 67), QColor(154, 203, 34), QColor(253, 173, 14), QColor(94, 25, 11)});
    QLinearGradient base(0, 0, width, height);
    base.setColorAt(0, brand.lighter(115));
    base.setColorAt(1, brand.darker(130));
    p.fillRect(0, 0, width, height, base);
    p.setPen(Qt::NoPen);
    for (int shape = 0; shape < 7; ++shape) {
        QColor light(255, 255, 255, int(between(random, 18, 50)));
        p.setBrush(light);
        const double r = between(random, height * 0.3, height * 1.1);
        p.drawEllipse(QPointF(between(random, 0, width), between(random, 0, height)), r, r);
    }
    // A glass and a plate, the ad's product shot, on the right.
    const QPointF glass(width * 0.8, height * 0.55);
    p.setBrush(QColor(255, 255, 255, 200));
    p.drawRoundedRect(QRectF(glass.x() - height * 0.12, glass.y() - height * 0.3, height * 0.24, height * 0.55), 8, 8);
    p.setBrush(QColor(250, 220, 120, 230));
    p.drawRoundedRect(QRectF(glass.x() - height * 0.1, glass.y() - height * 0.1, height * 0.2, height * 0.32), 6, 6);
    p.setBrush(QColor(120, 190, 80));
    p.drawEllipse(QPointF(glass.x() + height * 0.05, glass.y() - height * 0.3), height * 0.07, height * 0.04);
    p.end();
    return jpeg(image);
}

}

#include "fixtures/QuickItems.h"
#include "richtext/ApplicationFonts.h"
#include "richtext/RichLabel.h"
#include "richtext/RichString.h"
#include "richtext/RichTextLayout.h"

#include <QDir>
#include <QPainter>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickWindow>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>

#include <gtest/gtest.h>

#include <memory>

Q_IMPORT_QML_PLUGIN(Velmora_RichTextPlugin)

namespace {
// Sheets and markup as the place list and its swipe buttons write them.
const QStringList sheets = {
    QStringLiteral("body { font-name: OpenSans; font-size: 15; }"),
    QStringLiteral("p { font-name: OpenSans; font-size: 13; } b { font-name: OpenSans-Bold; font-size: 17; }"),
    QStringLiteral("red { color: #d95b43; } grey { color: rgb(137, 124, 94); }"),
    QStringLiteral("center { align: center; line-height: 1.4; } up { baseline-offset: 6; font-size: 10; }"),
    QStringLiteral("white { color: #ffffff; } swipe-text { font-name: OpenSans; font-size: 10; }"),
};

const char *const sampleQml = R"(
import QtQuick
import Velmora.RichText
Window {
    width: 390; height: 420; color: "#f4f1ec"
    property var samples: []
    Column {
        x: 16; y: 16; spacing: 18; width: 358
        Repeater {
            model: samples.length
            Rectangle {
                required property int index
                width: 358; height: label.height + 16
                color: index === 3 ? "#9acb22" : "white"
                RichLabel { id: label; objectName: "label" + index; x: 8; y: 8; width: 342; text: samples[index]
                            maximumLineCount: index === 2 ? 1 : 0 }
            }
        }
    }
}
)";

struct Scene {
    QQmlEngine engine;
    std::unique_ptr<QQuickWindow> window;
    RichLabel *label(int i) { return findItem<RichLabel>(window->contentItem(), QStringLiteral("label%1").arg(i)); }
};

std::unique_ptr<Scene> makeScene(const QVariantList &samples)
{
    auto scene = std::make_unique<Scene>();
    QQmlComponent component(&scene->engine);
    component.setData(sampleQml, QUrl());
    QObject *root = component.createWithInitialProperties({{QStringLiteral("samples"), samples}});
    EXPECT_TRUE(root) << qPrintable(component.errorString());
    scene->window.reset(qobject_cast<QQuickWindow *>(root));
    return scene;
}

int countPixels(const QImage &image, const QRect &area, const std::function<bool(QColor)> &match)
{
    int count = 0;
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x)
            count += match(image.pixelColor(x, y));
    return count;
}
}

// Catches: a label that ignores its width (no wrapping), a line limit that doesn't cut and elide,
// a run colour that never reaches the pixels, and implicit sizes that layouts can't use.
TEST(RichLabel, DrawsWrapsAndElidesRenderedMarkup)
{
    QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
    registerApplicationFonts();
    const RichString r(sheets);
    const QString longText = QStringLiteral("Cocina criolla de siempre en una casona colonial, con patio, música en vivo "
                                            "los fines de semana y una carta de cócteles que merece la visita.");
    const QVariantList samples = {
        QVariant::fromValue(r.render(QStringLiteral("<body><b>La Bodeguita del Medio</b>\n<grey><p>Criolla, Mariscos · Habana Vieja</p></grey></body>"))),
        QVariant::fromValue(r.render(QStringLiteral("<body><p><![CDATA[") + longText + QStringLiteral("]]></p></body>"))),
        QVariant::fromValue(r.render(QStringLiteral("<body><red><![CDATA[") + longText + QStringLiteral("]]></red></body>"))),
        QVariant::fromValue(r.render(QStringLiteral("<body><center><white><b>T</b>\n<swipe-text>Llamar</swipe-text></white></center></body>"))),
        QVariant::fromValue(r.render(QStringLiteral("<body>Precio 25<up>CUC</up> · <red>Oferta</red></body>"))),
    };
    auto scene = makeScene(samples);
    ASSERT_TRUE(scene->window);
    scene->window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(scene->window.get()));

    RichLabel *wrapped = scene->label(1);
    RichLabel *elided = scene->label(2);
    ASSERT_TRUE(wrapped && elided);
    EXPECT_GT(wrapped->implicitWidth(), wrapped->width()); // it wants one long line...
    EXPECT_GT(wrapped->height(), 2.5 * scene->label(4)->height()); // ...and wraps onto several
    EXPECT_FALSE(wrapped->truncated());
    EXPECT_TRUE(elided->truncated());
    EXPECT_LT(elided->height(), 1.5 * scene->label(4)->height());
    EXPECT_TRUE(elided->plainText().startsWith(QStringLiteral("Cocina criolla")));

    const QImage image = scene->window->grabWindow();
    const auto rectOf = [&](RichLabel *label) {
        return label->mapRectToScene(QRectF(0, 0, label->width(), label->height())).toAlignedRect()
            .intersected(image.rect());
    };
    const auto isAccent = [](QColor c) { return c.red() > 180 && c.green() < 130 && c.blue() < 110; };
    EXPECT_GT(countPixels(image, rectOf(elided), isAccent), 50);
    EXPECT_EQ(countPixels(image, rectOf(wrapped), isAccent), 0);
    const auto isWhite = [](QColor c) { return c.red() > 240 && c.green() > 240 && c.blue() > 240; };
    EXPECT_GT(countPixels(image, rectOf(scene->label(3)), isWhite), 20);

    QDir().mkpath(QStringLiteral(VELMORA_TEST_OUTPUT));
    EXPECT_TRUE(image.save(QStringLiteral(VELMORA_TEST_OUTPUT "/richlabel-samples.png")));
}

// Catches: a line-limited label whose last allowed line is an empty paragraph with text after it
// reading past its text (a crash in release builds), and an unbroken word of any length being
// handed whole to the layout (seconds of layout for 100 KB).
TEST(RichLabel, LineLimitsAndHugeWordsAreSafe)
{
    RichString r(sheets);
    for (const QString &text : {QStringLiteral("Paladar in the old town.\n\nOpen every day."), QStringLiteral("\n\nTail"),
                                QStringLiteral("One\n\n\n\n"), QStringLiteral("\n")}) {
        for (int lines : {1, 2, 3}) {
            RichTextLayout layout;
            layout.setText(r.render(QStringLiteral("<body><p><![CDATA[") + text + QStringLiteral("]]></p></body>")));
            layout.setMaximumLineCount(lines);
            const QSizeF size = layout.layout(300);
            EXPECT_GT(size.height(), 0);
            QImage image(300, 200, QImage::Format_ARGB32_Premultiplied);
            image.fill(Qt::white);
            QPainter painter(&image);
            layout.draw(&painter);
        }
    }
    RichTextLayout cut;
    cut.setText(r.render(QStringLiteral("<body><p>Paladar in the old town.\n\nOpen every day.</p></body>")));
    cut.setMaximumLineCount(2);
    cut.layout(300);
    EXPECT_TRUE(cut.isTruncated());

    // Past the cap, more of one word changes nothing the layout is given.
    const auto widthOf = [&](qsizetype length) {
        RichTextLayout layout;
        layout.setText(r.render(QStringLiteral("<body><p>") + QString(length, QLatin1Char('x')) + QStringLiteral("</p></body>")));
        return layout.naturalSize().width();
    };
    EXPECT_EQ(widthOf(100000), widthOf(8000));
    EXPECT_LT(widthOf(100), widthOf(8000));
}

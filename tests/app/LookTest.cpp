#include "app/AppDelegate.h"
#include "app/AppWindow.h"
#include "presentation/Globals.h"
#include "catalogue/LanguageSwitch.h"
#include "fixtures/QuickItems.h"
#include "fixtures/TestHome.h"
#include "platform/Localize.h"
#include "platform/UserDefaults.h"
#include "richtext/ApplicationFonts.h"
#include "richtext/FontRegistry.h"
#include "richtext/IconFont.h"
#include "richtext/RichTextLayout.h"

#include <QDir>
#include <QPainterPath>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QRawFont>
#include <QTest>

#include <gtest/gtest.h>

namespace {
const char *const sheetFontNames[] = {"OpenSans",      "OpenSans-Light",     "OpenSans-Semibold",  "OpenSans-Bold",
                                      "OpenSans-Extrabold", "OpenSans-Italic", "OpenSans-BoldItalic"};

QFont sheetFont(const QString &name, double size)
{
    const auto face = FontRegistry::shared().face(name);
    return RichTextLayout::qfont(RunFont{name, face.value_or(FontFace{}), size});
}

// The app's window on the small fixture, past the subscription invitation.
struct FixtureWindow {
    FixtureWindow()
    {
        // Before the application object, which loads the catalogue as it is made.
        home.addCatalogue(QStringLiteral("20170101"));
        home.defaults().setBool(true, QStringLiteral("subscription-screen-seen"));
        delegate = std::make_unique<AppDelegate>();
        delegate->didFinishLaunching();
        window = std::make_unique<AppWindow>(*delegate);
    }
    bool show() { return window->load() && QTest::qWaitForWindowExposed(window->window()); }

    TestHome home;
    std::unique_ptr<AppDelegate> delegate;
    std::unique_ptr<AppWindow> window;
};
}

// Catches: a style-sheet name resolving to the wrong weight or slant, or to a substitute family
// because a bundled file failed to load.
TEST(Look, EverySheetFontResolvesToItsBundledFace)
{
    ASSERT_TRUE(registerApplicationFonts());
    const QMap<QString, QString> styles = {
        {QStringLiteral("OpenSans"), QStringLiteral("Regular")},
        {QStringLiteral("OpenSans-Light"), QStringLiteral("Light")},
        {QStringLiteral("OpenSans-Semibold"), QStringLiteral("Semibold")},
        {QStringLiteral("OpenSans-Bold"), QStringLiteral("Bold")},
        {QStringLiteral("OpenSans-Extrabold"), QStringLiteral("Extrabold")},
        {QStringLiteral("OpenSans-Italic"), QStringLiteral("Italic")},
        {QStringLiteral("OpenSans-BoldItalic"), QStringLiteral("Bold Italic")},
    };
    for (const char *name : sheetFontNames) {
        const QString sheetName = QString::fromLatin1(name);
        ASSERT_TRUE(FontRegistry::shared().face(sheetName)) << name;
        const QRawFont raw = QRawFont::fromFont(sheetFont(sheetName, 20));
        EXPECT_EQ(raw.familyName(), QStringLiteral("Open Sans")) << name;
        EXPECT_EQ(raw.styleName().remove(QLatin1Char(' ')).toLower(),
                  styles.value(sheetName).remove(QLatin1Char(' ')).toLower()) << name;
    }
    EXPECT_EQ(Globals::lightFont().face, *FontRegistry::shared().face(QStringLiteral("OpenSans-Light")));
    EXPECT_EQ(Globals::tabFont().size, 12);
    EXPECT_EQ(QRawFont::fromFont(RichTextLayout::qfont(Globals::bigIconFont())).familyName(), IconFont::fontName);
    EXPECT_EQ(&Globals::swipeReserveColor(), &Globals::barTintColor());
}

// Catches: an icon character with no glyph in the generated font (it would draw as a box or
// in a text font), and two uses that should look different sharing one picture.
TEST(Look, EveryIconCharacterHasItsGlyph)
{
    ASSERT_TRUE(registerApplicationFonts());
    const QRawFont icons = QRawFont::fromFont(RichTextLayout::qfont(Globals::iconFont()));
    ASSERT_EQ(icons.familyName(), IconFont::fontName);
    QMap<QString, quint32> glyphOf;
    for (const IconFont::Glyph &glyph : IconFont::all()) {
        ASSERT_EQ(glyph.text->size(), 1) << glyph.name;
        const QList<quint32> indexes = icons.glyphIndexesForString(*glyph.text);
        ASSERT_EQ(indexes.size(), 1);
        EXPECT_NE(indexes.first(), 0u) << glyph.name << " has no glyph";
        EXPECT_FALSE(icons.pathForGlyph(indexes.first()).isEmpty()) << glyph.name;
        glyphOf.insert(QString::fromLatin1(glyph.name), indexes.first());
    }
    EXPECT_EQ(glyphOf.size(), 37);
    for (const auto &[off, on] : {std::pair{"favoriteOff", "favoriteOn"}, std::pair{"visitedOff", "visitedOn"},
                                  std::pair{"toVisitOff", "toVisitOn"}, std::pair{"checkOff", "checkOn"},
                                  std::pair{"chevronClosed", "chevronOpen"}, std::pair{"mapThin", "mapFull"}})
        EXPECT_NE(glyphOf.value(QString::fromLatin1(off)), glyphOf.value(QString::fromLatin1(on))) << off;
}

// Draws every icon beside its constant's name and a line in each Open Sans face, through the
// QML Theme a screen uses, and saves it to look at. Catches a Theme map that lost an entry.
TEST(Look, IconAndFontGallery)
{
    ASSERT_TRUE(registerApplicationFonts());
    QQmlEngine engine;
    engine.addImportPath(QStringLiteral("qrc:/"));
    QQmlComponent component(&engine);
    component.setData(R"(
        import QtQuick
        import Velmora
        Rectangle {
            width: 420; height: column.height + 24; color: "white"
            Column {
                id: column; x: 12; y: 12; spacing: 6
                Grid {
                    objectName: "icons"; columns: 3; columnSpacing: 6; rowSpacing: 4
                    Repeater {
                        model: Object.keys(Theme.icons).sort()
                        Row {
                            required property string modelData
                            width: 128; spacing: 6
                            Rectangle {
                                width: 30; height: 30; radius: 4; color: Theme.colors.barTintColor
                                Text { anchors.centerIn: parent; color: "white"; font: Theme.fonts.iconFont
                                       text: Theme.icons[modelData] }
                            }
                            Text { anchors.verticalCenter: parent.verticalCenter; text: modelData
                                   font: Theme.font("OpenSans", 11); color: "#333" }
                        }
                    }
                }
                Repeater {
                    model: ["OpenSans-Light", "OpenSans", "OpenSans-Italic", "OpenSans-Semibold",
                            "OpenSans-Bold", "OpenSans-BoldItalic", "OpenSans-Extrabold"]
                    Text { required property string modelData
                           text: modelData + ": Paladar Ñico, cocina criolla"
                           font: Theme.font(modelData, 15); color: Theme.colors.settingsTextColor }
                }
            }
        }
    )", QUrl(QStringLiteral("qrc:/gallery.qml")));
    std::unique_ptr<QQuickItem> root(qobject_cast<QQuickItem *>(component.create()));
    ASSERT_TRUE(root) << component.errorString().toStdString();

    QQuickWindow window;
    window.resize(int(root->width()), int(root->height()));
    root->setParentItem(window.contentItem());
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    QQuickItem *grid = findItem(root.get(), QStringLiteral("icons"));
    ASSERT_TRUE(grid);
    EXPECT_EQ(grid->childItems().size() - 1, int(IconFont::all().size())); // one Repeater among the rows
    const QImage image = window.grabWindow();
    QDir().mkpath(QStringLiteral(VELMORA_TEST_OUTPUT));
    EXPECT_TRUE(image.save(QStringLiteral(VELMORA_TEST_OUTPUT "/icons-and-fonts.png")));
}

// Catches: a language change that leaves the window's texts in the old language.
TEST(Look, WindowRetranslatesOnALanguageChange)
{
    FixtureWindow app;
    ASSERT_TRUE(app.show());
    AppWindow &window = *app.window;

    // The capital of the small fixture has a promotion, so its discover tab shows.
    const auto tabTitle = [&](const QString &title) {
        return findItemIf(window.window()->contentItem(), [&](QQuickItem *item) {
                   return item->property("text").toString() == title;
               }) != nullptr;
    };
    switchLanguage(Restaurants::shared(), QStringLiteral("es"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return tabTitle(QStringLiteral("Descubre")); }, 2000));
    switchLanguage(Restaurants::shared(), QStringLiteral("en"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return tabTitle(QStringLiteral("Discover")); }, 2000));
}

// Catches a bar title standing off the middle (22 px to the right) on screens with a button on
// one side only: settings, about, offers, my places and the place list's own search.
TEST(Look, BarTitlesStandInTheMiddleOfTheBar)
{
    FixtureWindow app;
    ASSERT_TRUE(app.show());
    AppWindow &window = *app.window;
    AppDelegate &delegate = *app.delegate;
    for (const char *link : {"velmora://settings", "velmora://info", "velmora://offers", "velmora://myplaces"}) {
        SCOPED_TRACE(link);
        delegate.openLink(QString::fromLatin1(link), false);
        QTest::qWait(600);
        QQuickItem *title = findItemIf(window.window()->contentItem(), [](QQuickItem *item) {
            return item->objectName() == QLatin1String("navigationTitle") && item->isVisible() && item->width() > 0;
        });
        ASSERT_TRUE(title);
        const QRectF shown = title->mapRectToScene(QRectF(0, 0, title->width(), title->height()));
        EXPECT_NEAR(shown.center().x(), window.window()->width() / 2.0, 1.0);
    }
}

#include "fixtures/DemoWindow.h"
#include "presentation/AccessibleTree.h"
#include "presentation/UiDump.h"

#include <QAccessible>
#include <QMetaEnum>
#include <QQuickItem>

// Every screen at the sizes of today's Linux phones, upright and sideways, in the language the
// run is in: nothing a finger presses lies outside the window or under another control, and no
// text is cut off without an ellipsis.

namespace {
struct Size {
    int width, height;
};
const Size phones[] = {{360, 720}, {390, 844}, {412, 915}};

qreal opacityOf(const QQuickItem *item)
{
    qreal opacity = 1;
    for (; item; item = item->parentItem())
        opacity *= item->opacity();
    return opacity;
}

// The scrolling view a control lies in, if any: it shows the control only within its own frame.
const QQuickItem *flickableOf(const QQuickItem *item)
{
    for (const QQuickItem *parent = item->parentItem(); parent; parent = parent->parentItem())
        if (parent->inherits("QQuickFlickable"))
            return parent;
    return nullptr;
}

QString describe(QAccessibleInterface *node, const QRectF &rect)
{
    const char *role = QMetaEnum::fromType<QAccessible::Role>().valueToKey(node->role());
    return QStringLiteral("%1 \"%2\" at %3,%4 %5x%6")
        .arg(QLatin1String(role ? role : "?"), node->text(QAccessible::Name))
        .arg(rect.x())
        .arg(rect.y())
        .arg(rect.width())
        .arg(rect.height());
}

// What a user would notice on the window as it stands.
QStringList layoutFaults(QQuickWindow *window)
{
    QStringList faults;
    const QRectF bounds(0, 0, window->width(), window->height());
    const QList<ShownAccessible> shown = shownAccessibles(window);
    QList<std::pair<QAccessibleInterface *, QRectF>> controls;
    for (const ShownAccessible &entry : shown) {
        auto *item = qobject_cast<QQuickItem *>(entry.node->object());
        if (!item || !isKeyboardStop(entry.node))
            continue;
        // A map's pins lie where their places are, on top of each other at low zooms: the map's
        // nature, not a layout.
        if (item->objectName().startsWith(QLatin1String("readablePin-")))
            continue;
        const QRectF whole = item->mapRectToScene(item->boundingRect());
        // A row a list shows half is cut by the list, which scrolls; anything else must fit.
        const QQuickItem *scroller = flickableOf(item);
        if (!scroller && !bounds.adjusted(-0.5, -0.5, 0.5, 0.5).contains(whole))
            faults << QStringLiteral("outside the window: ") + describe(entry.node, whole);
        const QRectF seen = scroller ? whole.intersected(scroller->mapRectToScene(scroller->boundingRect())) : whole;
        controls.append({entry.node, seen.intersected(bounds)});
    }
    for (qsizetype i = 0; i < controls.size(); ++i)
        for (qsizetype j = i + 1; j < controls.size(); ++j) {
            const QRectF a = controls.at(i).second, b = controls.at(j).second, overlap = a.intersected(b);
            // A control inside another (a button on a row) is a design; two side by side that
            // overlap are a finger's guess.
            if (overlap.width() > 2 && overlap.height() > 2 && !a.contains(b) && !b.contains(a))
                faults << QStringLiteral("overlapping: ") + describe(controls.at(i).first, a) + QStringLiteral(" and ")
                              + describe(controls.at(j).first, b);
        }
    // A bar's title stands in the middle of the window, whatever the buttons beside it.
    findItemIf(window->contentItem(), [&](QQuickItem *title) {
        if (title->objectName() != QLatin1String("navigationTitle") || !title->isVisible() || opacityOf(title) < 0.99)
            return false;
        const QRectF box = title->mapRectToScene(title->boundingRect());
        const qreal drawn = box.left() + (box.width() - std::min(box.width(), title->property("contentWidth").toReal())) / 2;
        const qreal centre = drawn + std::min(box.width(), title->property("contentWidth").toReal()) / 2;
        if (bounds.contains(box.center()) && std::abs(centre - window->width() / 2.0) > 2)
            faults << QStringLiteral("title off centre: \"%1\" centred at %2").arg(title->property("text").toString()).arg(centre);
        return false;
    });
    findItemIf(window->contentItem(), [&](QQuickItem *item) {
        if (!item->inherits("QQuickText") || !item->isVisible() || opacityOf(item) < 0.01)
            return false;
        const QRectF box = item->mapRectToScene(item->boundingRect());
        if (!bounds.intersects(box) || item->property("text").toString().isEmpty() || item->property("truncated").toBool())
            return false;
        const qreal contentWidth = item->property("contentWidth").toReal(), contentHeight = item->property("contentHeight").toReal();
        const bool elides = item->property("elide").toInt() != 0;
        if (!elides && (contentWidth > item->width() + 1.5 || contentHeight > item->height() + 1.5) && item->clip())
            faults << QStringLiteral("text cut without an ellipsis: \"%1\" (%2x%3 in %4x%5)")
                          .arg(item->property("text").toString().left(60))
                          .arg(contentWidth)
                          .arg(contentHeight)
                          .arg(item->width())
                          .arg(item->height());
        else if (!elides && contentWidth > item->width() + 1.5 && item->width() > 0)
            faults << QStringLiteral("text wider than its place: \"%1\" (%2 in %3)")
                          .arg(item->property("text").toString().left(60))
                          .arg(contentWidth)
                          .arg(item->width());
        return false;
    });
    return faults;
}

struct Screen {
    const char *name;
    QString link; // empty: the screen the app starts on
};

void checkEverySize(DemoWindow &ui, const QList<Screen> &screens)
{
    QQuickWindow *window = ui.window->window();
    for (const Size &size : phones)
        for (const bool upright : {true, false}) {
            const int width = upright ? size.width : size.height, height = upright ? size.height : size.width;
            window->resize(width, height);
            for (const Screen &screen : screens) {
                if (!screen.link.isEmpty())
                    ui.delegate->openLink(screen.link, false);
                QTest::qWait(450); // slides and fades end; lists lay out
                // The first run's steps come in after its splash.
                if (const QQuickItem *steps = ui.item("walkthroughContainer")) {
                    ASSERT_TRUE(QTest::qWaitFor([steps] { return steps->opacity() >= 1.0; }, 10000));
                }
                QTest::qWait(100);
                const QStringList faults = layoutFaults(window);
                EXPECT_TRUE(faults.isEmpty()) << screen.name << " at " << width << "x" << height << ":\n  "
                                              << faults.join(QStringLiteral("\n  ")).toStdString();
                ui.save(qPrintable(QStringLiteral("layout-%1-%2x%3").arg(QLatin1String(screen.name)).arg(width).arg(height)));
            }
        }
}
}

TEST(PhoneLayout, EveryScreenOfTheGuideFits)
{
    prepareUiDump();
    DemoWindow ui;
    const int place = ui.cardOnScreen()->objectName().mid(int(qstrlen("placeCard-"))).toInt();
    checkEverySize(ui, {{"list", QStringLiteral("velmora://search")},
                        {"discover", QStringLiteral("velmora://discover")},
                        {"offers", QStringLiteral("velmora://offers")},
                        {"place", QStringLiteral("velmora://place/%1").arg(place)},
                        {"place-map", QStringLiteral("velmora://map?place=%1").arg(place)},
                        {"map", QStringLiteral("velmora://map")},
                        {"myplaces", QStringLiteral("velmora://myplaces")},
                        {"settings", QStringLiteral("velmora://settings")},
                        {"info", QStringLiteral("velmora://info")}});
}

TEST(PhoneLayout, TheFirstRunFits)
{
    prepareUiDump();
    DemoWindow ui({}, DemoWindow::Start::FirstRun);
    checkEverySize(ui, {{"first-run", QString()}});
}

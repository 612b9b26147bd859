#include "app/SideDrawer.h"
#include "fixtures/DemoWindow.h"

#include <QGuiApplication>
#include <QStyleHints>

// A phone is used by touch: the gestures of the list and the drawer driven by touch points, as a
// touch screen sends them, not by a mouse. (The map's pinch and the gallery's swipe are touched
// in their own screens' tests.)

// Catches a row that opens its buttons for a mouse drag but not for a finger's swipe.
TEST(Touch, ASwipeOnARowShowsItsButtons)
{
    DemoWindow ui;
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.listShown(); }, 5000));
    QQuickItem *card = ui.cardOnScreen();
    ASSERT_TRUE(card);
    QQuickWindow *window = ui.window->window();
    touchDrag(window, card->mapToScene(QPointF(card->width() - 40, card->height() / 2)).toPoint(), QPoint(-250, 0));
    ASSERT_TRUE(QTest::qWaitFor([&] { return ui.item("swipeButton-call") && ui.item("swipeButton-call")->isVisible(); }, 2000));
    QQuickItem *call = ui.item("swipeButton-call");
    const QRectF shown = call->mapRectToScene(call->boundingRect());
    EXPECT_TRUE(QRectF(0, 0, window->width(), window->height()).contains(shown)) << "the call button lies where a finger can reach it";
    ui.save("touch-swipe");
}

// Catches a drawer that a finger can't push back: the content follows the finger while it moves,
// a finger lifted moving left closes the menu, one moving right keeps it open.
TEST(Touch, TheOpenDrawerFollowsTheFinger)
{
    DemoWindow ui;
    QQuickWindow *window = ui.window->window();
    SideDrawer *drawer = ui.delegate->drawer();
    // Taps the menu button once the content takes taps, and waits until the menu has slid open and
    // the drawer takes drags.
    const auto openMenu = [&] {
        EXPECT_TRUE(QTest::qWaitFor([&] { return drawer->contentInteractive(); }, 3000));
        tap(window, ui.item("barButton-menu"));
        EXPECT_TRUE(QTest::qWaitFor([&] { return drawer->isMenuVisible() && drawer->offset() == drawer->menuWidth() && drawer->recognizersAttached(); }, 3000));
        // A finger coming down again sooner would make a double tap of the two.
        QTest::qWait(QGuiApplication::styleHints()->mouseDoubleClickInterval());
        return int(drawer->offset());
    };
    const int open = openMenu();
    // On the content the drawer pushed aside, right of the menu.
    const QPoint onContent(open + (window->width() - open) / 2, window->height() / 2);

    static QPointingDevice *touchscreen = QTest::createTouchDevice();
    QTest::touchEvent(window, touchscreen).press(0, onContent);
    for (int step = 1; step <= 10; ++step) {
        QTest::qWait(16);
        QTest::touchEvent(window, touchscreen).move(0, onContent - QPoint(10 * step, 0));
    }
    // Qt Quick hands a touch's moves on with the next frame: the last one may still be on its way.
    (void)QTest::qWaitFor([&] { return std::abs(drawer->offset() - (open - 100)) <= 8; }, 1000); // checked just below
    EXPECT_NEAR(drawer->offset(), open - 100, 8) << "the content under the finger moves with it";
    QTest::touchEvent(window, touchscreen).release(0, onContent - QPoint(100, 0));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !drawer->isMenuVisible() && drawer->offset() == 0; }, 2000)) << "lifted moving left: closed";

    openMenu();
    touchDrag(window, onContent, QPoint(30, 0));
    (void)QTest::qWaitFor([&] { return drawer->offset() == open; }, 3000); // checked just below
    EXPECT_TRUE(drawer->isMenuVisible()) << "lifted moving right: still open";
    EXPECT_NEAR(drawer->offset(), open, 1.0);
}

#pragma once

#include <QImage>
#include <QSize>
#include <QString>

#include <memory>

class AppDelegate;
class QQmlApplicationEngine;
class QQuickWindow;
class SingleInstance;

// The phone-sized window and the QML engine that draws the application object's root.
class AppWindow
{
public:
    static constexpr int logicalWidth = 390;
    static constexpr int logicalHeight = 844;

    // Makes the engine and starts reading and compiling the window's QML on the engine's
    // loader thread, so that it is ready by the time the window is made: at start, while the
    // catalogue loads.
    static std::unique_ptr<QQmlApplicationEngine> startEngine();

    explicit AppWindow(AppDelegate &delegate);
    // With the engine startEngine made.
    AppWindow(AppDelegate &delegate, std::unique_ptr<QQmlApplicationEngine> engine);
    ~AppWindow();

    bool load();
    // Links another start on this home handed over are followed here, the window brought forward.
    void followLinksFrom(SingleInstance &instance);
    // Whether the window fills the screen rather than keeping its phone shape: on a phone (a
    // screen whose shorter side is under 600 logical pixels, as phones' are and tablets' are not,
    // or a phone shell: Phosh, Plasma Mobile).
    static bool fillsScreen(const QSize &screen, const QString &desktop, const QString &plasmaPlatform);
    QQuickWindow *window() const;
    QQmlApplicationEngine &engine() { return *m_engine; }
    QImage grab() const;

private:
    AppDelegate &m_delegate;
    std::unique_ptr<QQmlApplicationEngine> m_engine;
};

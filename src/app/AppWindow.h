#pragma once

#include <QImage>

#include <memory>

class AppDelegate;
class QQmlApplicationEngine;
class QQuickWindow;

// The phone-sized window and the QML engine that draws the application object's root.
class AppWindow
{
public:
    static constexpr int logicalWidth = 390;
    static constexpr int logicalHeight = 844;

    explicit AppWindow(AppDelegate &delegate);
    ~AppWindow();

    bool load();
    QQuickWindow *window() const;
    QQmlApplicationEngine &engine() { return *m_engine; }
    QImage grab() const;

private:
    AppDelegate &m_delegate;
    std::unique_ptr<QQmlApplicationEngine> m_engine;
};

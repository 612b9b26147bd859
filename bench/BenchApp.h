#pragma once

#include "app/AppDelegate.h"
#include "app/AppWindow.h"
#include "platform/Paths.h"
#include "platform/UserDefaults.h"
#include "toolkit/CatalogueWriter.h"
#include "toolkit/DemoGenerator.h"

#include <QDir>
#include <QElapsedTimer>
#include <QTimer>
#include <QFile>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <functional>
#include <memory>

// The app in an offscreen window on a demo of `places` places, in a fresh home, with the capital
// chosen and its first list shown. A demo made by the toolkit beforehand (VELMORA_BENCH_DEMO
// names the file) keeps the making of it out of the process's memory figures.
struct BenchApp {
    // `beforeLaunch` runs in the new home before the app starts (settings a benchmark needs).
    explicit BenchApp(int places, const std::function<void()> &beforeLaunch = {})
    {
        Paths::setRoot(home.path());
        QDir().mkpath(Paths::documents());
        const QString made = qEnvironmentVariable("VELMORA_BENCH_DEMO");
        const QString installed = Paths::documents() + QStringLiteral("/velmora-20261101.db");
        if (!made.isEmpty()) {
            if (!QFile::link(made, installed))
                qFatal("can't link %s", qPrintable(made));
        } else {
            DemoOptions options;
            options.places = places;
            QString error;
            if (!writeCatalogue(makeDemo(options), installed, &error))
                qFatal("%s", qPrintable(error));
        }
        UserDefaults::standard().setInteger(1, QStringLiteral("Province"));
        if (beforeLaunch)
            beforeLaunch();
        delegate = std::make_unique<AppDelegate>();
        delegate->didFinishLaunching();
        window = std::make_unique<AppWindow>(*delegate);
        if (!window->load() || !QTest::qWaitForWindowExposed(window->window()))
            qFatal("no window");
        QTest::qWait(1500); // the first list of the capital
    }

    QTemporaryDir home;
    std::unique_ptr<AppDelegate> delegate; // made once the home is in place
    std::unique_ptr<AppWindow> window;
};

// A watchdog on the main thread: a 1 ms timer whose late ticks are the thread's stalls.
struct StallWatch {
    StallWatch()
    {
        clock.start();
        timer.setInterval(1);
        timer.setTimerType(Qt::PreciseTimer);
        QObject::connect(&timer, &QTimer::timeout, [this] {
            const qint64 now = clock.nsecsElapsed();
            if (last)
                gaps.append(now - last);
            last = now;
        });
    }
    // Starts counting from now, so that work done before the first tick counts too.
    void start()
    {
        gaps.clear();
        last = clock.nsecsElapsed();
        timer.start();
    }
    void stop()
    {
        timer.stop();
        std::sort(gaps.begin(), gaps.end());
    }
    double longestMs() const { return gaps.isEmpty() ? 0 : gaps.last() / 1e6; }
    double percentileMs(int percent) const
    {
        return gaps.isEmpty() ? 0 : gaps.at(std::min(gaps.size() - 1, gaps.size() * percent / 100)) / 1e6;
    }
    qsizetype ticks() const { return gaps.size(); }

    QElapsedTimer clock;
    QTimer timer;
    QList<qint64> gaps;
    qint64 last = 0;
};

#pragma once

#include "app/AppDelegate.h"
#include "app/AppWindow.h"
#include "platform/Paths.h"
#include "platform/UserDefaults.h"
#include "toolkit/CatalogueWriter.h"
#include "toolkit/DemoGenerator.h"

#include <QDir>
#include <QFile>
#include <QQuickWindow>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

// The app in an offscreen window on a demo of `places` places, in a fresh home, with the capital
// chosen and its first list shown. A demo made by the toolkit beforehand (VELMORA_BENCH_DEMO
// names the file) keeps the making of it out of the process's memory figures.
struct BenchApp {
    explicit BenchApp(int places)
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

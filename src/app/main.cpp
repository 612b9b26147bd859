#include "analytics/Measurement.h"
#include "app/AppDelegate.h"
#include "app/AppWindow.h"
#include "app/LaunchOptions.h"
#include "platform/PositionerService.h"
#include "app/UpdateCommands.h"
#include "catalogue/Restaurants.h"
#include "platform/Database.h"
#include "platform/Paths.h"
#include "platform/SingleInstance.h"
#include "presentation/QuickItems.h"
#include "presentation/UiDump.h"
#include "update/UpdateChecker.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTextStream>
#include <QTimer>

#include <sys/resource.h>

namespace {
// The process's own high-water mark of resident memory.
long peakMemoryMb()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}
}

int main(int argc, char *argv[])
{
    QElapsedTimer sinceStart;
    sinceStart.start();

    // The command line is read before any window or home: --help answers without a display.
    QStringList arguments;
    for (int i = 0; i < argc; ++i)
        arguments.append(QString::fromLocal8Bit(argv[i]));
    const LaunchOptions options = LaunchOptions::parse(arguments);
    switch (options.action) {
    case LaunchOptions::Action::Help:
        QTextStream(stdout) << LaunchOptions::usage() << "\n";
        return 0;
    case LaunchOptions::Action::Version:
        QTextStream(stdout) << LaunchOptions::version() << "\n";
        return 0;
    case LaunchOptions::Action::Refuse:
        QTextStream(stderr) << "velmora: " << options.error << "\n\n" << LaunchOptions::usage() << "\n";
        return 2;
    case LaunchOptions::Action::Run:
        break;
    }

    if (!options.updateUrl.isEmpty())
        UpdateChecker::setInternetURLOverride(QUrl(options.updateUrl));
    if (!options.analyticsUrl.isEmpty())
        MeasurementContext::setEndpointOverride(QUrl(options.analyticsUrl));
    if (!options.positionLog.isEmpty())
        PositionerService::useLog(options.positionLog);
    if (options.checkUpdates || options.updateNow) {
        // Headless: no display needed, nothing shown.
        QCoreApplication app(argc, argv);
        QCoreApplication::setOrganizationName(QStringLiteral("Velmora"));
        QCoreApplication::setApplicationName(QStringLiteral("Velmora"));
        if (!options.home.isEmpty())
            Paths::setRoot(options.home);
        // Discovery's time: 4 s unless VELMORA_DISCOVERY_SECONDS says otherwise (0 skips it).
        bool given = false;
        const int discovery = qEnvironmentVariableIntValue("VELMORA_DISCOVERY_SECONDS", &given);
        const int seconds = given ? qMax(0, discovery) : 4;
        const int status = options.updateNow ? runUpdateNow(seconds) : runUpdateCheck(seconds);
        // As in the window's path: no background read of the catalogue (the search index's
        // build, the listing read ahead) may outlive main, whose statics go next.
        Restaurants::shared().waitForSearchIndex();
        return status;
    }

    QGuiApplication app(argc, argv);
    QGuiApplication::setOrganizationName(QStringLiteral("Velmora"));
    QGuiApplication::setApplicationName(QStringLiteral("Velmora"));
    // The desktop entry's name: how a shell ties the window to its launcher icon.
    QGuiApplication::setDesktopFileName(QStringLiteral("app.velmora.Velmora"));
    if (!options.home.isEmpty())
        Paths::setRoot(options.home);

    // A start on a home that is open already hands its link (or just "show yourself") to the
    // running app and ends. Runs that report and quit stand alone.
    SingleInstance instance(Paths::root());
    if (!options.reportsAndQuits()) {
        if (instance.handOver(options.link)) {
            QTextStream(stdout) << "velmora: handed to the app already running on " << Paths::root() << "\n";
            return 0;
        }
        instance.listen();
    }

    std::unique_ptr<QQmlApplicationEngine> engine = AppWindow::startEngine();
    AppDelegate delegate;
    delegate.didFinishLaunching();

    if (options.dumpUi)
        prepareUiDump();
    AppWindow window(delegate, std::move(engine));
    if (!window.load())
        return 1;

    // A link is followed once the interface is there, as if the user had gone there; a run that
    // reports its first frame gets the screen reached without a transition half done.
    if (!options.link.isEmpty())
        delegate.openLink(options.link, !options.reportsAndQuits());
    window.followLinksFrom(instance);

    if (options.reportsAndQuits()) {
        // The main interface is reported once a frame shows the place list's rows, which are
        // built in the background; any other root at its first frame. Ten seconds at most.
        QTimer::singleShot(10000, &app, &QGuiApplication::quit);
        QObject::connect(window.window(), &QQuickWindow::frameSwapped, &app, [&] {
            static bool rootReported = false;
            const auto *list = findItem(window.window()->contentItem(), QStringLiteral("placeList"));
            // Shown once the cards on screen are all in: they are added a turn each.
            bool settling = false;
            if (const auto *view = findItem(window.window()->contentItem(), QStringLiteral("lugaresView")))
                if (auto *controller = view->property("controller").value<QObject *>())
                    QMetaObject::invokeMethod(controller, "rowsSettling", Qt::DirectConnection, Q_RETURN_ARG(bool, settling));
            const bool rowsShown = list && list->property("count").toInt() > 0 && !settling;
            // The wall-clock moment lets a caller measure from the process's launch, not from main.
            const auto report = [&](const char *what) {
                QTextStream(stdout) << what << " " << delegate.root() << " shown after " << sinceStart.elapsed()
                                    << " ms (at " << QDateTime::currentMSecsSinceEpoch()
                                    << "); keyed catalogue connections: " << Database::keyedConnectionCount()
                                    << "; peak memory: " << peakMemoryMb() << " MB\n";
            };
            if (!rootReported && options.selfTest) {
                rootReported = true;
                report("root");
            }
            if (delegate.root() == QLatin1String("main") && !rowsShown)
                return;
            // The first run's steps fade in after the splash: reported once they are there.
            const auto *steps = findItem(window.window()->contentItem(), QStringLiteral("walkthroughContainer"));
            if (steps && steps->opacity() < 1.0)
                return;
            // The map's pins are made after its screen first shows.
            const auto *mapSpinner = findItem(window.window()->contentItem(), QStringLiteral("mapActivityIndicator"));
            if (mapSpinner && mapSpinner->isVisible())
                return;
            if (delegate.root() == QLatin1String("main") && options.selfTest)
                report("list rows of");
            if (options.dumpUi)
                QTextStream(stdout) << uiDumpJson(dumpUi(window.window())) << "\n";
            if (!options.screenshot.isEmpty() && !window.grab().save(options.screenshot))
                QTextStream(stderr) << "could not save " << options.screenshot << "\n";
            QObject::disconnect(window.window(), &QQuickWindow::frameSwapped, &app, nullptr);
            QTimer::singleShot(0, &app, &QGuiApplication::quit);
        }, Qt::QueuedConnection);
    }
    const int status = QGuiApplication::exec();
    // No background read of the catalogue may outlive main: the process's statics go next.
    Restaurants::shared().waitForSearchIndex();
    return status;
}

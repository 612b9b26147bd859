#include "app/AppDelegate.h"
#include "app/AppWindow.h"
#include "app/LaunchOptions.h"
#include "platform/Database.h"
#include "platform/Paths.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QQuickWindow>
#include <QTextStream>
#include <QTimer>

int main(int argc, char *argv[])
{
    QElapsedTimer sinceStart;
    sinceStart.start();

    QGuiApplication app(argc, argv);
    QGuiApplication::setOrganizationName(QStringLiteral("Velmora"));
    QGuiApplication::setApplicationName(QStringLiteral("Velmora"));

    const LaunchOptions options = LaunchOptions::parse(QGuiApplication::arguments());
    if (!options.home.isEmpty())
        Paths::setRoot(options.home);

    AppDelegate delegate;
    delegate.didFinishLaunching();

    AppWindow window(delegate);
    if (!window.load())
        return 1;

    if (options.selfTest || !options.screenshot.isEmpty()) {
        QObject::connect(window.window(), &QQuickWindow::frameSwapped, &app, [&] {
            // Report once, after the first frame has reached the screen.
            static bool reported = false;
            if (reported)
                return;
            reported = true;
            // The wall-clock moment lets a caller measure from the process's launch, not from main.
            QTextStream(stdout) << "root " << delegate.root() << " shown after " << sinceStart.elapsed()
                                << " ms (at " << QDateTime::currentMSecsSinceEpoch()
                                << "); keyed catalogue connections: " << Database::keyedConnectionCount() << "\n";
            if (!options.screenshot.isEmpty() && !window.grab().save(options.screenshot))
                QTextStream(stderr) << "could not save " << options.screenshot << "\n";
            QTimer::singleShot(0, &app, &QGuiApplication::quit);
        }, Qt::QueuedConnection);
    }
    return QGuiApplication::exec();
}

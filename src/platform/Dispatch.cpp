#include "platform/Dispatch.h"

#include "platform/Logging.h"

#include <QCoreApplication>
#include <QTimer>

void dispatchMain(std::function<void()> block)
{
    QCoreApplication *app = QCoreApplication::instance();
    if (!app) {
        qCWarning(lcPlatform) << "dispatchMain before the application exists; the block is dropped";
        return;
    }
    QMetaObject::invokeMethod(app, std::move(block), Qt::QueuedConnection);
}

void dispatchAfter(int milliseconds, std::function<void()> block)
{
    QCoreApplication *app = QCoreApplication::instance();
    if (!app) {
        qCWarning(lcPlatform) << "dispatchAfter before the application exists; the block is dropped";
        return;
    }
    // The timer must be created on the main thread, whatever thread asks.
    QMetaObject::invokeMethod(app, [app, milliseconds, block = std::move(block)]() mutable {
        QTimer::singleShot(milliseconds, app, std::move(block));
    }, Qt::QueuedConnection);
}

#include "app/AppWindow.h"

#include "app/AppDelegate.h"
#include "browse/PlacePictureProvider.h"
#include "placecard/HeaderPictures.h"
#include "platform/Localize.h"
#include "platform/Logging.h"
#include "platform/NotificationCenter.h"
#include "platform/SingleInstance.h"
#include "presentation/KeyboardAccess.h"
#include "richtext/ApplicationFonts.h"

#include <QFont>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlComponent>
#include <QQuickWindow>
#include <QScreen>
#include <QtQml/qqmlextensionplugin.h>

// The QML modules are static plugins; importing them here ties them to whoever shows the window.
Q_IMPORT_QML_PLUGIN(VelmoraPlugin)
Q_IMPORT_QML_PLUGIN(Velmora_RichTextPlugin)

namespace {
const QUrl mainQml(QStringLiteral("qrc:/Velmora/app/Main.qml"));
}

std::unique_ptr<QQmlApplicationEngine> AppWindow::startEngine()
{
    auto engine = std::make_unique<QQmlApplicationEngine>();
    engine->addImportPath(QStringLiteral("qrc:/"));
    // Loading goes on in the background; load() then finds the types read.
    new QQmlComponent(engine.get(), mainQml, QQmlComponent::Asynchronous, engine.get());
    return engine;
}

AppWindow::AppWindow(AppDelegate &delegate)
    : AppWindow(delegate, nullptr)
{
}

AppWindow::AppWindow(AppDelegate &delegate, std::unique_ptr<QQmlApplicationEngine> engine)
    : m_delegate(delegate)
    , m_engine(engine ? std::move(engine) : std::make_unique<QQmlApplicationEngine>())
{
    // Every qsTrId() binding is evaluated anew in the new language.
    NotificationCenter::defaultCenter().addObserver(m_engine.get(), Localize::changeNotification,
                                                    [engine = m_engine.get()](const QVariant &) { engine->retranslate(); });
}

AppWindow::~AppWindow() = default;

bool AppWindow::load()
{
    registerApplicationFonts();
    // Plain Text items take the application font, not the window's.
    QGuiApplication::setFont(QFont(QStringLiteral("Open Sans")));
    m_engine->addImportPath(QStringLiteral("qrc:/"));
    m_engine->addImageProvider(QStringLiteral("places"), new PlacePictureProvider);
    m_engine->addImageProvider(QStringLiteral("placecard"), new HeaderPictureProvider);
    m_engine->setInitialProperties({{QStringLiteral("app"), QVariant::fromValue(&m_delegate)}});
    m_engine->load(mainQml);
    if (!window()) {
        qCCritical(lcApp) << "The main window could not be created";
        return false;
    }
    new KeyboardAccess(window());
    const QScreen *screen = window()->screen();
    if (screen && fillsScreen(screen->availableSize(), qEnvironmentVariable("XDG_CURRENT_DESKTOP"), qEnvironmentVariable("PLASMA_PLATFORM")))
        window()->showFullScreen();
    return true;
}

bool AppWindow::fillsScreen(const QSize &screen, const QString &desktop, const QString &plasmaPlatform)
{
    return std::min(screen.width(), screen.height()) < 600 || desktop.split(QLatin1Char(':')).contains(QLatin1String("Phosh"), Qt::CaseInsensitive)
           || plasmaPlatform.startsWith(QLatin1String("phone"));
}

void AppWindow::followLinksFrom(SingleInstance &instance)
{
    QObject::connect(&instance, &SingleInstance::messageReceived, m_engine.get(), [this](const QString &link) {
        qCInfo(lcApp).noquote() << "Another start handed over" << (link.isEmpty() ? QStringLiteral("nothing") : link);
        if (QQuickWindow *shown = window()) {
            shown->show();
            shown->raise();
            shown->requestActivate();
        }
        if (!link.isEmpty())
            m_delegate.openLink(link, true);
    });
}

QQuickWindow *AppWindow::window() const
{
    const auto roots = m_engine->rootObjects();
    return roots.isEmpty() ? nullptr : qobject_cast<QQuickWindow *>(roots.first());
}

QImage AppWindow::grab() const
{
    QQuickWindow *w = window();
    return w ? w->grabWindow() : QImage();
}

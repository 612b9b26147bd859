#include "app/LaunchOptions.h"

#include "platform/Localize.h"
#include "platform/Paths.h"

#include <QCoreApplication>
#include <QUrl>

namespace {
// Qt's own platform options, which QGuiApplication takes from the command line itself.
const QStringList qtValueOptions = {QStringLiteral("-platform"),        QStringLiteral("-platformpluginpath"),
                                    QStringLiteral("-platformtheme"),   QStringLiteral("-plugin"),
                                    QStringLiteral("-qwindowgeometry"), QStringLiteral("-qwindowtitle"),
                                    QStringLiteral("-qwindowicon"),     QStringLiteral("-style"),
                                    QStringLiteral("-stylesheet"),      QStringLiteral("-session"),
                                    QStringLiteral("-display"),         QStringLiteral("-geometry"),
                                    QStringLiteral("-title"),           QStringLiteral("-name")};
const QStringList qtFlags = {QStringLiteral("-reverse"), QStringLiteral("-nograb"), QStringLiteral("-dograb")};
}

LaunchOptions LaunchOptions::parse(const QStringList &arguments)
{
    LaunchOptions options;
    const auto refuse = [&options](const QString &why) {
        options.action = Action::Refuse;
        options.error = why;
        return options;
    };
    for (qsizetype i = 1; i < arguments.size(); ++i) {
        const QString &argument = arguments.at(i);
        const auto value = [&](QString &into) {
            if (i + 1 >= arguments.size())
                return false;
            into = arguments.at(++i);
            return true;
        };
        if (argument == QLatin1String("--help") || argument == QLatin1String("-h")) {
            options.action = Action::Help;
            return options;
        }
        if (argument == QLatin1String("--version")) {
            options.action = Action::Version;
            return options;
        }
        if (argument == QLatin1String("--self-test")) {
            options.selfTest = true;
        } else if (argument == QLatin1String("--dump-ui")) {
            options.dumpUi = true;
        } else if (argument == QLatin1String("--home")) {
            if (!value(options.home))
                return refuse(QStringLiteral("--home needs a folder"));
        } else if (argument == QLatin1String("--screenshot")) {
            if (!value(options.screenshot))
                return refuse(QStringLiteral("--screenshot needs a file name"));
        } else if (argument == QLatin1String("--check-updates")) {
            options.checkUpdates = true;
        } else if (argument == QLatin1String("--update-now")) {
            options.updateNow = true;
        } else if (argument == QLatin1String("--update-url")) {
            if (!value(options.updateUrl) || !QUrl(options.updateUrl, QUrl::StrictMode).isValid())
                return refuse(QStringLiteral("--update-url needs a URL"));
        } else if (argument == QLatin1String("--analytics-url")) {
            if (!value(options.analyticsUrl) || !QUrl(options.analyticsUrl, QUrl::StrictMode).isValid())
                return refuse(QStringLiteral("--analytics-url needs a URL"));
        } else if (argument == QLatin1String("--position-log")) {
            if (!value(options.positionLog))
                return refuse(QStringLiteral("--position-log needs an NMEA file"));
        } else if (argument == QLatin1String("--open")) {
            if (!value(options.link))
                return refuse(QStringLiteral("--open needs a link"));
        } else if (qtValueOptions.contains(argument)) {
            QString ignored;
            if (!value(ignored))
                return refuse(argument + QStringLiteral(" needs a value"));
        } else if (qtFlags.contains(argument) || argument.startsWith(QLatin1String("-qmljsdebugger="))) {
            continue;
        } else if (!argument.startsWith(QLatin1Char('-')) && options.link.isEmpty()) {
            // The platform hands a link over as the only argument (the desktop file's %u).
            options.link = argument;
        } else {
            return refuse(QStringLiteral("unknown option %1").arg(argument));
        }
    }
    if (options.home.isEmpty())
        options.home = qEnvironmentVariable("VELMORA_HOME");
    return options;
}

QString LaunchOptions::usage()
{
    return Localize::textIn(Localize::defaultLanguage(), QStringLiteral("cli_usage"));
}

QString LaunchOptions::version()
{
    return QStringLiteral("velmora %1").arg(QStringLiteral(VELMORA_VERSION));
}

#include "app/LaunchOptions.h"

#include "platform/Paths.h"

LaunchOptions LaunchOptions::parse(const QStringList &arguments)
{
    LaunchOptions options;
    options.home = Paths::rootFromArguments(arguments);
    options.selfTest = arguments.contains(QStringLiteral("--self-test"));
    const qsizetype shot = arguments.indexOf(QStringLiteral("--screenshot"));
    if (shot >= 0 && shot + 1 < arguments.size())
        options.screenshot = arguments.at(shot + 1);
    return options;
}

#include "platform/Localize.h"

#include "platform/NotificationCenter.h"
#include "platform/UserDefaults.h"

#include <QLocale>

const QString Localize::changeNotification = QStringLiteral("LCLLanguageChangeNotification");
const QString Localize::currentLanguageKey = QStringLiteral("LCLCurrentLanguageKey");

QStringList Localize::availableLanguages()
{
    return {QStringLiteral("es"), QStringLiteral("en")};
}

QString Localize::currentLanguage()
{
    const QString stored = UserDefaults::standard().stringForKey(currentLanguageKey);
    return stored.isEmpty() ? defaultLanguage() : stored;
}

void Localize::setCurrentLanguage(const QString &code)
{
    const QString language = availableLanguages().contains(code) ? code : defaultLanguage();
    UserDefaults::standard().setString(language, currentLanguageKey);
    NotificationCenter::defaultCenter().post(changeNotification);
}

QString Localize::defaultLanguage()
{
    // uiLanguages() lists the device's preferences, best first, as "es-ES", "en_GB" or "es".
    const QStringList available = availableLanguages();
    for (const QString &preferred : QLocale::system().uiLanguages()) {
        const QString code = preferred.section(QLatin1Char('-'), 0, 0).section(QLatin1Char('_'), 0, 0).toLower();
        if (available.contains(code))
            return code;
    }
    return QStringLiteral("en");
}

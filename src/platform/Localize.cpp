#include "platform/Localize.h"

#include "platform/Logging.h"
#include "platform/NotificationCenter.h"
#include "platform/UserDefaults.h"

#include <QCoreApplication>
#include <QLocale>
#include <QMutex>
#include <mutex>
#include <QTranslator>

#include <map>

#include <memory>

const QString Localize::changeNotification = QStringLiteral("LCLLanguageChangeNotification");
const QString Localize::currentLanguageKey = QStringLiteral("LCLCurrentLanguageKey");

namespace {

// One loaded translator per language, kept for the process's life: the installed one and those
// asked for by textIn().
class Catalogues
{
public:
    static Catalogues &shared()
    {
        static Catalogues catalogues;
        return catalogues;
    }

    // Null when the app has no texts for the language.
    QTranslator *translator(const QString &language)
    {
        QMutexLocker lock(&m_mutex);
        auto it = m_translators.find(language);
        if (it == m_translators.end()) {
            auto translator = std::make_unique<QTranslator>();
            if (!translator->load(QStringLiteral(":/i18n/velmora_%1.qm").arg(language)))
                translator.reset();
            it = m_translators.emplace(language, std::move(translator)).first;
        }
        return it->second.get();
    }

    void install(const QString &language)
    {
        QTranslator *next = translator(language);
        QMutexLocker lock(&m_mutex);
        if (next == m_installed)
            return;
        if (m_installed)
            QCoreApplication::removeTranslator(m_installed);
        m_installed = next;
        if (!next) {
            qCWarning(lcPlatform) << "No interface texts for language" << language;
            return;
        }
        if (!QCoreApplication::installTranslator(next))
            qCWarning(lcPlatform) << "The texts of" << language << "could not be installed";
    }

private:
    std::mutex m_mutex;
    std::map<QString, std::unique_ptr<QTranslator>> m_translators;
    QTranslator *m_installed = nullptr;
};

}

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
    Catalogues::shared().install(language);
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

QCollator Localize::collator() { return QCollator(QLocale(currentLanguage())); }

void Localize::loadCurrentLanguage()
{
    Catalogues::shared().install(currentLanguage());
}

QString Localize::localized(const QString &key)
{
    return qtTrId(key.toUtf8().constData());
}

QString Localize::textIn(const QString &language, const QString &key)
{
    const QTranslator *translator = Catalogues::shared().translator(language);
    const QString text = translator ? translator->translate(nullptr, key.toUtf8().constData()) : QString();
    return text.isEmpty() ? key : text;
}

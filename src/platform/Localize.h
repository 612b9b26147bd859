#pragma once

#include <QString>
#include <QStringList>

// The interface language. The chosen code is kept in the settings store across starts; a change
// posts LCLLanguageChangeNotification so every screen that shows text can redo it.
class Localize
{
public:
    static QStringList availableLanguages();
    // The chosen language, or the device's default when none was chosen.
    static QString currentLanguage();
    static void setCurrentLanguage(const QString &code);
    // The first of the device's preferred languages that the app has, else "en".
    static QString defaultLanguage();

    static const QString changeNotification;
    static const QString currentLanguageKey;
};

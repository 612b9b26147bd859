#pragma once

#include <QCollator>
#include <QString>
#include <QStringList>

// The interface language and its texts. Texts are Qt Linguist messages whose ids are the
// localisation keys ("search_places"), compiled into the app as :/i18n/velmora_<code>.qm; C++
// reads them with qtTrId() or localized(), QML with qsTrId(). The chosen code is kept in the
// settings store across starts, and a change posts LCLLanguageChangeNotification so every screen
// that shows text can redo it.
class Localize
{
public:
    static QStringList availableLanguages();
    // The chosen language, or the device's default when none was chosen.
    static QString currentLanguage();
    // Orders names as a reader of the current language expects ("Ávila" among the A's).
    static QCollator collator();
    // Stores the code, installs its texts, then posts the change notification.
    static void setCurrentLanguage(const QString &code);
    // The first of the device's preferred languages that the app has, else "en".
    static QString defaultLanguage();
    // Installs the texts of currentLanguage() into the application; done once at launch.
    static void loadCurrentLanguage();

    // The text of a key held in a variable (a row table's key); qtTrId() for literal keys.
    static QString localized(const QString &key);
    // The text of `key` in `language` without switching; the key itself when the language has no
    // texts or no text for the key.
    static QString textIn(const QString &language, const QString &key);

    static const QString changeNotification;
    static const QString currentLanguageKey;
};

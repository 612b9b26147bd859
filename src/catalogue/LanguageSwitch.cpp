#include "catalogue/LanguageSwitch.h"

#include "catalogue/Restaurants.h"
#include "platform/Localize.h"

void switchLanguage(Restaurants &restaurants, const QString &code)
{
    if (code == Localize::currentLanguage())
        return;
    restaurants.setLanguage(code);
    Localize::setCurrentLanguage(code);
}

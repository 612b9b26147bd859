#include "personal/FortunesViewController.h"

#include "presentation/NavigationController.h"

void FortunesViewController::setFortune(const QString &fortune)
{
    m_fortune = fortune;
    emit fortuneChanged();
}

void FortunesViewController::closeButtonTouched()
{
    if (NavigationController *navigation = navigationController())
        navigation->dismissViewController(true);
}

#include "PhoneNumbersViewController.h"

#include "presentation/NavigationController.h"

PhoneNumbersViewController::PhoneNumbersViewController(QObject *parent)
    : ViewController(parent)
{
}

void PhoneNumbersViewController::setNumbers(const QStringList &numbers)
{
    m_numbers = numbers;
    emit numbersChanged();
}

QString PhoneNumbersViewController::cancelTitle() const { return qtTrId("phones_cancel"); }

void PhoneNumbersViewController::cancel()
{
    if (NavigationController *navigation = navigationController())
        navigation->dismissViewController(true);
}

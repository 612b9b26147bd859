#include "PhoneNumbersViewController.h"

#include "platform/Localize.h"
#include "platform/NotificationCenter.h"
#include "presentation/NavigationController.h"
#include "presentation/UrlOpener.h"

#include <QClipboard>
#include <QGuiApplication>

PhoneNumbersViewController::PhoneNumbersViewController(QObject *parent)
    : ViewController(parent)
{
}

void PhoneNumbersViewController::viewDidLoad()
{
    NotificationCenter::defaultCenter().addObserver(this, Localize::changeNotification, [this](const QVariant &) { emit localized(); });
}

void PhoneNumbersViewController::setNumbers(const QStringList &numbers)
{
    m_numbers = numbers;
    emit numbersChanged();
}

QString PhoneNumbersViewController::cancelTitle() const { return qtTrId("phones_cancel"); }
QString PhoneNumbersViewController::copyTitle() const { return qtTrId("phone_copy"); }

QUrl PhoneNumbersViewController::dialURL(const QString &number)
{
    QString digits = number;
    digits.remove(QLatin1Char(' '));
    const QUrl url(QStringLiteral("tel:/") + digits, QUrl::StrictMode);
    return url.isValid() && !digits.isEmpty() ? url : QUrl();
}

void PhoneNumbersViewController::didSelectRow(int row)
{
    const QUrl url = dialURL(m_numbers.value(row));
    if (!url.isEmpty())
        UrlOpener::openURL(url);
}

void PhoneNumbersViewController::cellLongPress(int row)
{
    if (row < 0 || row >= m_numbers.size())
        return;
    m_lastLongPressedNumber = m_numbers.at(row);
    emit copyMenuRequested(row);
}

void PhoneNumbersViewController::copyPhone()
{
    if (QClipboard *clipboard = QGuiApplication::clipboard())
        clipboard->setText(m_lastLongPressedNumber);
}

void PhoneNumbersViewController::cancel()
{
    if (NavigationController *navigation = navigationController())
        navigation->dismissViewController(true);
}

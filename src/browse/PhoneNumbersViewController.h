#pragma once

#include "presentation/ViewController.h"

#include <QStringList>

// The sheet of a place's phone numbers, rising from the bottom of the list. For now a plain list
// of the numbers with a cancel button; the full sheet comes with the sheets of the place card.
class PhoneNumbersViewController : public ViewController
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made through the Storyboard registry")
    Q_PROPERTY(QStringList numbers READ numbers WRITE setNumbers NOTIFY numbersChanged)
    Q_PROPERTY(QString cancelTitle READ cancelTitle CONSTANT)

public:
    explicit PhoneNumbersViewController(QObject *parent = nullptr);

    QUrl viewUrl() const override { return QUrl(QStringLiteral("qrc:/Velmora/browse/PhoneNumbersView.qml")); }
    bool navigationBarHidden() const override { return true; }

    QStringList numbers() const { return m_numbers; }
    void setNumbers(const QStringList &numbers);
    QString cancelTitle() const;
    Q_INVOKABLE void cancel();

signals:
    void numbersChanged();

private:
    QStringList m_numbers;
};

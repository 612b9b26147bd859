#pragma once

#include "presentation/ViewController.h"

#include <QStringList>

// The sheet of a place's phone numbers, rising from the bottom over a dimmed screen: a tap
// dials the number, a long press offers to copy it, the button below closes the sheet.
class PhoneNumbersViewController : public ViewController
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made through the Storyboard registry")
    Q_PROPERTY(QStringList numbers READ numbers WRITE setNumbers NOTIFY numbersChanged)
    Q_PROPERTY(qreal tableHeight READ tableHeight NOTIFY numbersChanged)
    Q_PROPERTY(qreal cellHeight READ cellHeight CONSTANT)
    Q_PROPERTY(QString cancelTitle READ cancelTitle NOTIFY localized)
    Q_PROPERTY(QString copyTitle READ copyTitle NOTIFY localized)
    Q_PROPERTY(QString lastLongPressedNumber READ lastLongPressedNumber NOTIFY copyMenuRequested)

public:
    explicit PhoneNumbersViewController(QObject *parent = nullptr);

    QUrl viewUrl() const override { return QUrl(QStringLiteral("qrc:/Velmora/placecard/PhoneNumbersView.qml")); }
    bool navigationBarHidden() const override { return true; }

    static constexpr qreal rowHeight = 75;
    qreal cellHeight() const { return rowHeight; }
    // The whole sheet: a row per number and the cancel button.
    static qreal sheetHeight(qsizetype numbers) { return rowHeight * qreal(numbers) + 50; }

    QStringList numbers() const { return m_numbers; }
    void setNumbers(const QStringList &numbers);
    qreal tableHeight() const { return rowHeight * qreal(m_numbers.size()); }
    QString cancelTitle() const;
    QString copyTitle() const;
    QString lastLongPressedNumber() const { return m_lastLongPressedNumber; }

    // The address a number dials: blanks removed, after "tel:/"; empty if no URL can be made.
    static QUrl dialURL(const QString &number);

    // Dials; the sheet stays up.
    Q_INVOKABLE void didSelectRow(int row);
    // Holds the number and asks the view for its copy menu over the row.
    Q_INVOKABLE void cellLongPress(int row);
    // Copies the held number as shown, blanks included.
    Q_INVOKABLE void copyPhone();
    Q_INVOKABLE void cancel();

signals:
    void numbersChanged();
    void localized();
    void copyMenuRequested(int row);

protected:
    void viewDidLoad() override;

private:
    QStringList m_numbers;
    QString m_lastLongPressedNumber;
};

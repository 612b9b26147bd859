#pragma once

#include "presentation/ViewController.h"

// The fortune sheet: one sentence in a frame over a reddish dim. A tap anywhere or on its
// button closes it.
class FortunesViewController : public ViewController
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made through the Storyboard registry")
    Q_PROPERTY(QString fortune READ fortune NOTIFY fortuneChanged)

public:
    using ViewController::ViewController;

    QUrl viewUrl() const override { return QUrl(QStringLiteral("qrc:/Velmora/personal/FortunesView.qml")); }

    QString fortune() const { return m_fortune; }
    void setFortune(const QString &fortune);
    bool isVisible() const { return m_visible; }

    void viewWillAppear() override { m_visible = true; }
    void viewWillDisappear() override { m_visible = false; }
    Q_INVOKABLE void closeButtonTouched();

signals:
    void fortuneChanged();

private:
    QString m_fortune;
    bool m_visible = false;
};

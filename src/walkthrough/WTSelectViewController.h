#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

class WalkthroughDelegate;

// The first step: download the catalogue, or copy in a file.
class WTSelectViewController : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the walkthrough")

public:
    explicit WTSelectViewController(QObject *parent = nullptr) : QObject(parent) {}
    WalkthroughDelegate *walkthroughDelegate = nullptr;

    Q_INVOKABLE void downloadButtonTouched();
    Q_INVOKABLE void iTunesButtonTouched();
};

#pragma once

#include <QObject>
#include <QString>
#include <QVariant>
#include <QtQml/qqmlregistration.h>

class MapCalloutDelegate;

// The one callout of the map: a picture on the left, a title and a subtitle, a button on the
// right. Its contents are set by the screen; the view draws it at the map's callout point.
class MapCalloutView : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("The map view owns its callout")
    Q_PROPERTY(QString leftImage READ leftImage NOTIFY changed)
    Q_PROPERTY(QVariant title READ title NOTIFY changed)
    Q_PROPERTY(QVariant subtitle READ subtitle NOTIFY changed)
    Q_PROPERTY(QVariant rightButtonTitle READ rightButtonTitle NOTIFY changed)
    Q_PROPERTY(QString spokenTitle READ spokenTitle NOTIFY changed)

public:
    using QObject::QObject;

    QString leftImage() const { return m_leftImage; }
    QVariant title() const { return m_title; }
    QVariant subtitle() const { return m_subtitle; }
    QVariant rightButtonTitle() const { return m_rightButtonTitle; }
    QString spokenTitle() const { return m_spokenTitle; }

    void setLeftImage(const QString &source);
    void setTitle(const QVariant &title, const QString &spoken);
    void setSubtitle(const QVariant &subtitle);
    void setRightButtonTitle(const QVariant &title);

    MapCalloutDelegate *delegate() const { return m_delegate; }
    void setDelegate(MapCalloutDelegate *delegate) { m_delegate = delegate; }

    Q_INVOKABLE void tapRightButton();

signals:
    void changed();

private:
    QString m_leftImage;
    QVariant m_title;
    QVariant m_subtitle;
    QVariant m_rightButtonTitle;
    QString m_spokenTitle;
    MapCalloutDelegate *m_delegate = nullptr;
};

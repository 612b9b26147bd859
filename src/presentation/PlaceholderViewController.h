#pragma once

#include "ViewController.h"

// Stands in for a screen whose own issue hasn't been built yet: its title, a short note, and
// the bar button its place calls for (the side menu for a top-level screen, back otherwise).
class PlaceholderViewController : public ViewController
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made through the Storyboard registry")
    Q_PROPERTY(QString message READ message WRITE setMessage NOTIFY messageChanged)
    Q_PROPERTY(bool presented READ presented CONSTANT)

public:
    enum class Place { TopLevel, Pushed, Presented };

    // `messageKey` names the translated note shown until someone sets a message of their own.
    PlaceholderViewController(const char *titleKey, const char *messageKey, Place place, QObject *parent = nullptr);

    QUrl viewUrl() const override { return QUrl(QStringLiteral("qrc:/Velmora/presentation/PlaceholderView.qml")); }
    QString message() const { return m_message; }
    void setMessage(const QString &message);
    // A presented sheet draws its own close button: it has no bar.
    bool presented() const { return m_place == Place::Presented; }
    Q_INVOKABLE void close();

signals:
    void messageChanged();

protected:
    void viewDidLoad() override;

private:
    const char *m_titleKey;
    const char *m_messageKey;
    QString m_message;
    Place m_place;
};

#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QStringList>

struct AvahiClient;
struct AvahiServiceBrowser;

// DNS-SD on the local network through the Avahi daemon, on the Qt event loop of the thread that
// makes it. Browses one service type in one domain, resolves what it finds, and reports. Without
// a daemon it logs once and reports nothing.
class ServiceBrowser : public QObject
{
    Q_OBJECT

public:
    ServiceBrowser(const QString &type, const QString &domain, QObject *parent = nullptr);
    ~ServiceBrowser() override;

    bool running() const { return m_browser != nullptr; }

signals:
    void found(const QString &name, const QString &type, const QString &domain);
    void removed(const QString &name, const QString &type, const QString &domain);
    // `txt` is the record in its wire form: a length byte before each "key=value" entry;
    // `address` the host's numeric address, for systems that can't look ".local" names up.
    void resolved(const QString &name, const QString &type, const QString &domain, const QString &host, int port, const QByteArray &txt,
                  const QString &address);

private:
    static void clientChanged(AvahiClient *client, int state, void *self);
    void start(AvahiClient *client);

    QString m_type;
    QString m_domain;
    AvahiClient *m_client = nullptr;
    AvahiServiceBrowser *m_browser = nullptr;
};

// Announces one service on the local network while it lives.
class ServiceAdvertiser
{
public:
    // False (with `error`) when there is no daemon to announce through.
    bool advertise(const QString &name, const QString &type, quint16 port, const QStringList &txt, QString *error);
    ~ServiceAdvertiser();

private:
    AvahiClient *m_client = nullptr;
    struct AvahiEntryGroup *m_group = nullptr;
};

#pragma once

#include "update/UpdateService.h"

#include <QList>
#include <QObject>
#include <QSet>
#include <QUrl>

#include <optional>

class ServiceBrowser;
class UpdateChecker;

// A place a catalogue can be fetched from, and how early to try it: higher first.
struct UpdateURL {
    QUrl url;
    int priority = 0;
    bool operator==(const UpdateURL &) const = default;
};

// The update servers of the local network, found by DNS-SD ("_velmoraupdates._tcp." in
// "local."). A server joins `services` only once its update information has answered; one that
// goes away leaves. Browsing runs from construction for the life of the process.
class ServiceCenter : public QObject
{
    Q_OBJECT

public:
    static inline const QString serviceType = QStringLiteral("_velmoraupdates._tcp");
    static inline const QString serviceDomain = QStringLiteral("local");

    explicit ServiceCenter(UpdateChecker &checker, QObject *parent = nullptr);
    ~ServiceCenter() override;

    const QSet<UpdateService> &services() const { return m_services; }
    // The sources with a URL, in no particular order.
    QList<UpdateURL> updateURLs() const;
    // Whether a proven local source announced a catalogue later than `date` (any, without one).
    bool hasNewerThan(const std::optional<QDate> &date) const;

    // What the browser reports; public so that a test can play a network's events.
    void didFindService(const QString &name, const QString &type, const QString &domain);
    void didRemoveService(const QString &name, const QString &type, const QString &domain);
    void didResolve(const UpdateService &resolved);

signals:
    void servicesChanged();

private:
    UpdateChecker &m_checker;
    ServiceBrowser *m_browser = nullptr;
    QSet<UpdateService> m_services;
};

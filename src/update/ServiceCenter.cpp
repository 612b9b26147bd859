#include "update/ServiceCenter.h"

#include "platform/Logging.h"
#include "platform/ServiceBrowser.h"
#include "update/UpdateChecker.h"

#include <QPointer>

ServiceCenter::ServiceCenter(UpdateChecker &checker, QObject *parent)
    : QObject(parent)
    , m_checker(checker)
    , m_browser(new ServiceBrowser(serviceType, serviceDomain, this))
{
    connect(m_browser, &ServiceBrowser::found, this, &ServiceCenter::didFindService);
    connect(m_browser, &ServiceBrowser::removed, this, &ServiceCenter::didRemoveService);
    connect(m_browser, &ServiceBrowser::resolved, this,
            [this](const QString &name, const QString &type, const QString &domain, const QString &host, int port, const QByteArray &txt,
                   const QString &address) { didResolve(UpdateService::resolved(domain, type, name, host, port, txt, address)); });
}

ServiceCenter::~ServiceCenter() = default;

QList<UpdateURL> ServiceCenter::updateURLs() const
{
    QList<UpdateURL> urls;
    for (const UpdateService &service : m_services)
        if (service.url)
            urls.append({*service.url, service.priority});
    return urls;
}

bool ServiceCenter::hasNewerThan(const std::optional<QDate> &date) const
{
    for (const UpdateService &service : m_services)
        if (service.url && service.dburl && (!date || service.date > *date))
            return true;
    return false;
}

void ServiceCenter::didFindService(const QString &name, const QString &type, const QString &domain)
{
    m_services.insert(UpdateService::found(domain, type, name));
    emit servicesChanged();
}

void ServiceCenter::didRemoveService(const QString &name, const QString &type, const QString &domain)
{
    m_services.remove(UpdateService::found(domain, type, name));
    emit servicesChanged();
}

void ServiceCenter::didResolve(const UpdateService &resolved)
{
    // Until it has proved itself, a server is no source.
    m_services.remove(resolved);
    emit servicesChanged();
    if (!resolved.url)
        return;
    qCInfo(lcUpdate).noquote() << "Asking" << resolved.description() << "at" << resolved.url->toString();
    m_checker.fetchUpdateInfo(*resolved.url, [self = QPointer(this), resolved](const UpdateInfo &info) {
        if (!self)
            return;
        UpdateService source = resolved;
        source.date = info.date;
        source.dburl = info.url;
        self->m_services.remove(source); // a found-again entry without URL gives way to the proven one
        self->m_services.insert(source);
        emit self->servicesChanged();
    });
}

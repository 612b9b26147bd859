#include "platform/ServiceBrowser.h"

#include "platform/AvahiQtPoll.h"
#include "platform/Logging.h"

#include <avahi-client/client.h>
#include <avahi-client/lookup.h>
#include <avahi-client/publish.h>
#include <avahi-common/address.h>
#include <avahi-common/error.h>
#include <avahi-common/malloc.h>
#include <avahi-common/strlst.h>

#include <utility>

namespace {
QString text(const char *value) { return QString::fromUtf8(value ? value : ""); }

QByteArray wireFormat(AvahiStringList *txt)
{
    QByteArray wire(int(avahi_string_list_serialize(txt, nullptr, 0)), '\0');
    if (!wire.isEmpty())
        avahi_string_list_serialize(txt, wire.data(), size_t(wire.size()));
    return wire;
}
}

ServiceBrowser::ServiceBrowser(const QString &type, const QString &domain, QObject *parent)
    : QObject(parent)
    , m_type(type)
    , m_domain(domain)
{
    int error = 0;
    // NO_FAIL: the client waits for a daemon that comes later instead of giving up.
    m_client = avahi_client_new(
        avahiQtPoll(), AVAHI_CLIENT_NO_FAIL,
        [](AvahiClient *client, AvahiClientState state, void *self) { ServiceBrowser::clientChanged(client, int(state), self); }, this, &error);
    if (!m_client)
        qCInfo(lcUpdate) << "No DNS-SD on this machine, so no local update sources:" << avahi_strerror(error);
}

ServiceBrowser::~ServiceBrowser()
{
    if (m_browser)
        avahi_service_browser_free(m_browser);
    if (m_client)
        avahi_client_free(m_client);
}

void ServiceBrowser::clientChanged(AvahiClient *client, int state, void *self)
{
    auto *browser = static_cast<ServiceBrowser *>(self);
    if (state == AVAHI_CLIENT_S_RUNNING) {
        browser->start(client);
    } else if (state == AVAHI_CLIENT_CONNECTING && !browser->m_browser) {
        static bool told = false;
        if (!std::exchange(told, true))
            qCInfo(lcUpdate) << "The DNS-SD daemon isn't running; local update sources come when it does";
    } else if (state == AVAHI_CLIENT_FAILURE && browser->m_browser) {
        avahi_service_browser_free(browser->m_browser);
        browser->m_browser = nullptr;
    }
}

void ServiceBrowser::start(AvahiClient *client)
{
    if (m_browser)
        return;
    const QByteArray type = m_type.toUtf8(), domain = m_domain.toUtf8();
    m_browser = avahi_service_browser_new(
        client, AVAHI_IF_UNSPEC, AVAHI_PROTO_UNSPEC, type.constData(), domain.constData(), AvahiLookupFlags(0),
        [](AvahiServiceBrowser *, AvahiIfIndex interface, AvahiProtocol protocol, AvahiBrowserEvent event, const char *name,
           const char *serviceType, const char *serviceDomain, AvahiLookupResultFlags, void *self) {
            auto *browser = static_cast<ServiceBrowser *>(self);
            if (event == AVAHI_BROWSER_NEW) {
                emit browser->found(text(name), text(serviceType), text(serviceDomain));
                // Resolved once; the resolver frees itself when it has answered.
                avahi_service_resolver_new(
                    browser->m_client, interface, protocol, name, serviceType, serviceDomain, AVAHI_PROTO_UNSPEC, AvahiLookupFlags(0),
                    [](AvahiServiceResolver *resolver, AvahiIfIndex, AvahiProtocol, AvahiResolverEvent resolved, const char *name,
                       const char *type, const char *domain, const char *host, const AvahiAddress *address, uint16_t port,
                       AvahiStringList *txt, AvahiLookupResultFlags, void *self) {
                        auto *browser = static_cast<ServiceBrowser *>(self);
                        char numeric[AVAHI_ADDRESS_STR_MAX] = {};
                        if (address)
                            avahi_address_snprint(numeric, sizeof numeric, address);
                        if (resolved == AVAHI_RESOLVER_FOUND)
                            emit browser->resolved(text(name), text(type), text(domain), text(host), port, wireFormat(txt), text(numeric));
                        avahi_service_resolver_free(resolver);
                    },
                    browser);
            } else if (event == AVAHI_BROWSER_REMOVE) {
                emit browser->removed(text(name), text(serviceType), text(serviceDomain));
            }
        },
        this);
    if (!m_browser)
        qCWarning(lcUpdate) << "Can't browse for" << m_type << ":" << avahi_strerror(avahi_client_errno(client));
}

bool ServiceAdvertiser::advertise(const QString &name, const QString &type, quint16 port, const QStringList &txt, QString *error)
{
    int code = 0;
    m_client = avahi_client_new(avahiQtPoll(), AvahiClientFlags(0), nullptr, nullptr, &code);
    if (!m_client) {
        *error = QStringLiteral("no DNS-SD daemon to advertise through: %1").arg(QString::fromUtf8(avahi_strerror(code)));
        return false;
    }
    m_group = avahi_entry_group_new(m_client, nullptr, nullptr);
    AvahiStringList *list = nullptr;
    for (const QString &entry : txt)
        list = avahi_string_list_add(list, entry.toUtf8().constData());
    const int added = m_group ? avahi_entry_group_add_service_strlst(m_group, AVAHI_IF_UNSPEC, AVAHI_PROTO_UNSPEC, AvahiPublishFlags(0),
                                                                     name.toUtf8().constData(), type.toUtf8().constData(), nullptr,
                                                                     nullptr, port, list)
                              : avahi_client_errno(m_client);
    avahi_string_list_free(list);
    if (added < 0 || avahi_entry_group_commit(m_group) < 0) {
        *error = QStringLiteral("can't advertise %1: %2").arg(name, QString::fromUtf8(avahi_strerror(avahi_client_errno(m_client))));
        return false;
    }
    return true;
}

ServiceAdvertiser::~ServiceAdvertiser()
{
    if (m_group)
        avahi_entry_group_free(m_group);
    if (m_client)
        avahi_client_free(m_client);
}

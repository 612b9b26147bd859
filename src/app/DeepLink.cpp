#include "app/DeepLink.h"

#include <QUrlQuery>

namespace {

struct Route {
    const char *host;
    DeepLink::Kind kind;
    bool takesId; // "/<id>" after the host
};

constexpr Route routes[] = {
    {"place", DeepLink::Kind::Place, true},       {"province", DeepLink::Kind::Province, true},
    {"search", DeepLink::Kind::Search, false},    {"map", DeepLink::Kind::Map, false},
    {"myplaces", DeepLink::Kind::MyPlaces, false}, {"settings", DeepLink::Kind::Settings, false},
    {"info", DeepLink::Kind::Info, false},        {"offers", DeepLink::Kind::Offers, false},
    {"discover", DeepLink::Kind::Discover, false},
};

// Ids are positive decimal numbers, nothing else ("+3", "0x10" and " 7" are not ids).
std::optional<int> idFrom(const QString &text)
{
    if (text.isEmpty() || text.size() > 9 || !std::all_of(text.begin(), text.end(), [](QChar c) { return c.isDigit() && c.unicode() < 128; }))
        return std::nullopt;
    const int id = text.toInt();
    return id > 0 ? std::optional<int>(id) : std::nullopt;
}

std::optional<DeepLink> refuse(QString *why, const QString &reason)
{
    if (why)
        *why = reason;
    return std::nullopt;
}

}

bool DeepLink::looksLikeLink(const QString &text)
{
    return text.startsWith(QLatin1String(scheme) + QLatin1Char(':'), Qt::CaseInsensitive);
}

std::optional<DeepLink> DeepLink::parse(const QString &link, QString *why)
{
    const QUrl url(link, QUrl::StrictMode);
    if (!url.isValid())
        return refuse(why, QStringLiteral("not a URL"));
    if (url.scheme().compare(QLatin1String(scheme), Qt::CaseInsensitive) != 0)
        return refuse(why, QStringLiteral("not a %1:// link").arg(QLatin1String(scheme)));
    const QString host = url.host().toLower();
    const Route *route = std::find_if(std::begin(routes), std::end(routes),
                                      [&](const Route &r) { return host == QLatin1String(r.host); });
    if (route == std::end(routes))
        return refuse(why, QStringLiteral("no such destination \"%1\"").arg(host));
    if (!url.userInfo().isEmpty() || url.port() != -1 || !url.fragment().isEmpty())
        return refuse(why, QStringLiteral("unexpected parts in the link"));

    DeepLink result;
    result.kind = route->kind;
    const QString path = url.path();
    const QUrlQuery query(url);
    if (route->takesId) {
        const auto id = idFrom(path.mid(1));
        if (!path.startsWith(QLatin1Char('/')) || !id)
            return refuse(why, QStringLiteral("%1 needs a numeric id: %1/<id>").arg(host));
        result.id = *id;
        if (!query.isEmpty())
            return refuse(why, QStringLiteral("%1 takes no query").arg(host));
        return result;
    }
    if (!path.isEmpty() && path != QLatin1String("/"))
        return refuse(why, QStringLiteral("%1 takes no path").arg(host));
    const auto items = query.queryItems(QUrl::FullyDecoded);
    for (const auto &[name, value] : items) {
        if (result.kind == Kind::Search && name == QLatin1String("q")) {
            result.text = value;
        } else if (result.kind == Kind::Map && name == QLatin1String("place")) {
            const auto id = idFrom(value);
            if (!id)
                return refuse(why, QStringLiteral("map?place= needs a numeric id"));
            result.id = *id;
        } else {
            return refuse(why, QStringLiteral("%1 takes no \"%2\"").arg(host, name));
        }
    }
    return result;
}

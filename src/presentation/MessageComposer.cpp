#include "presentation/MessageComposer.h"

#include "presentation/UrlOpener.h"

#include <QUrl>
#include <QUrlQuery>

namespace MessageComposer {

namespace {
Sheet &installed()
{
    static Sheet sheet;
    return sheet;
}
}

void compose(const QString &recipient, const QString &body, std::function<void(Result)> done)
{
    if (installed()) {
        installed()(recipient, body, std::move(done));
        return;
    }
    QUrl url(QStringLiteral("sms:") + recipient);
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("body"), QString::fromLatin1(QUrl::toPercentEncoding(body)));
    url.setQuery(query);
    done(UrlOpener::openURL(url) ? Result::sent : Result::failed);
}

void setSheet(Sheet sheet) { installed() = std::move(sheet); }

}

#include "AdActions.h"

#include "platform/Logging.h"

#include "presentation/UrlOpener.h"

namespace AdActions {

namespace {
// A URL made from the text as it stands: nothing is escaped for the caller.
std::optional<QUrl> strictUrl(const QString &text)
{
    const QUrl url(text, QUrl::StrictMode);
    if (!url.isValid() || url.scheme().isEmpty())
        return std::nullopt;
    return url;
}
}

std::optional<QUrl> urlFor(const Ad &ad, const QString &emailSubject)
{
    if (ad.value.isEmpty())
        return std::nullopt;
    if (ad.type == QLatin1String("url"))
        return strictUrl(ad.value);
    if (ad.type == QLatin1String("call"))
        return strictUrl(QStringLiteral("tel:") + ad.value);
    if (ad.type == QLatin1String("email")) {
        // Only blanks are escaped in the subject; anything else a URL can't hold spoils it.
        QString subject = emailSubject;
        subject.replace(QLatin1Char(' '), QStringLiteral("%20"));
        return strictUrl(QStringLiteral("mailto:") + ad.value + QStringLiteral("?subject=") + subject);
    }
    return std::nullopt;
}

bool performAdAction(const Ad &ad, const std::function<void(const QString &)> &showTip)
{
    if (ad.type == QLatin1String("tip") && !ad.value.isEmpty()) {
        if (!showTip)
            return false;
        showTip(ad.value);
        return true;
    }
    if (const auto url = urlFor(ad, qtTrId("adv_email_subject")))
        return UrlOpener::openURL(*url);
    qCInfo(lcApp).noquote() << "Ad" << ad.ad_id << "does nothing: type" << ad.type << "with value" << ad.value;
    return false;
}

}

#include "FuzzTargets.h"

#include "catalogue/CatalogueDates.h"
#include "catalogue/CatalogueFiles.h"
#include "catalogue/Filters.h"
#include "catalogue/PlaceListing.h"
#include "catalogue/SearchTerms.h"
#include "richtext/RichString.h"
#include "update/UpdateInfo.h"
#include "update/UpdateService.h"

#include <QJsonDocument>

namespace {
QString text(const QByteArray &bytes)
{
    return QString::fromUtf8(bytes);
}
}

const QList<FuzzTarget> &fuzzTargets()
{
    static const QList<FuzzTarget> targets = {
        {QStringLiteral("stylesheet"),
         [](const QByteArray &bytes) {
             RichString sheet(QStringList{text(bytes)});
             sheet.render(QStringLiteral("<body><p>a</p><b>b</b></body>"));
         }},
        {QStringLiteral("color"),
         [](const QByteArray &bytes) {
             RichString::parseColor(text(bytes));
             RichString::parseHexColor(text(bytes));
             RichString::parseNumber(text(bytes));
         }},
        {QStringLiteral("markup"),
         [](const QByteArray &bytes) {
             static const RichString sheet({QStringLiteral("p { font-name: OpenSans; font-size: 13; color: #d95b43; }"),
                                            QStringLiteral("b { font-name: OpenSans-Bold; line-height: 1.4; align: center; }")});
             sheet.render(text(bytes));
         }},
        {QStringLiteral("catalogue-name"),
         [](const QByteArray &bytes) {
             CatalogueFiles::isCandidateName(text(bytes));
             CatalogueFiles::patchDates(text(bytes));
             // A name also goes through the index's expansion and the scan's folding.
             searchTerms(text(bytes), text(bytes));
             foldForSearch(text(bytes));
         }},
        {QStringLiteral("dates"),
         [](const QByteArray &bytes) {
             CatalogueDates::parseCompact(text(bytes));
             CatalogueDates::parseDashed(text(bytes));
         }},
        {QStringLiteral("last-txt"),
         [](const QByteArray &bytes) {
             QString error;
             parseUpdateInfo(text(bytes), &error);
         }},
        {QStringLiteral("txt-record"),
         [](const QByteArray &bytes) {
             UpdateService::parseTXTRecord(bytes);
             UpdateService::resolved(QStringLiteral("local"), QStringLiteral("_t._tcp"), QStringLiteral("n"), QStringLiteral("h"), 80, bytes);
         }},
        {QStringLiteral("filters"),
         [](const QByteArray &bytes) {
             Filters filters;
             filters.load(QJsonDocument::fromJson(bytes).toVariant().toMap());
             filters.dictionary();
         }},
    };
    return targets;
}

const FuzzTarget *fuzzTarget(const QString &name)
{
    for (const FuzzTarget &target : fuzzTargets())
        if (target.name == name)
            return &target;
    return nullptr;
}

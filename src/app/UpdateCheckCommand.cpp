#include "app/UpdateCheckCommand.h"

#include "catalogue/Restaurants.h"
#include "platform/DefaultKeys.h"
#include "platform/UserDefaults.h"
#include "update/ServiceCenter.h"
#include "update/UpdateChecker.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>
#include <QTimer>

int runUpdateCheck(int discoverySeconds)
{
    UserDefaults &defaults = UserDefaults::standard();
    defaults.registerDefaultsFromFile(QStringLiteral(":/Defaults.json"));
    Restaurants &restaurants = Restaurants::shared();
    UpdateChecker checker(defaults, restaurants);
    ServiceCenter center(checker);

    QJsonObject internet{{QStringLiteral("url"), checker.internetURL().toString()}, {QStringLiteral("answered"), false}};
    // Done once discovery has had its time and the Internet has answered or failed; the
    // Internet gets 60 s beyond discovery at most.
    QEventLoop loop;
    bool internetDone = false, discoveryOver = false;
    const auto finishWhenBothAreOver = [&] {
        if (internetDone && discoveryOver)
            loop.quit();
    };
    // Asked now, whatever the six-hour rule says: an operator wants the answer of this moment.
    checker.checkInternet(0, [&](bool answered) {
        internet.insert(QStringLiteral("answered"), answered);
        internetDone = true;
        finishWhenBothAreOver();
    });
    QTimer::singleShot(discoverySeconds * 1000, &loop, [&] {
        discoveryOver = true;
        finishWhenBothAreOver();
    });
    QTimer::singleShot(discoverySeconds * 1000 + 60000, &loop, &QEventLoop::quit);
    loop.exec();

    QJsonArray sources;
    for (const UpdateService &service : center.services())
        if (service.url)
            sources.append(QJsonObject{{QStringLiteral("name"), service.name},
                                       {QStringLiteral("url"), service.url->toString()},
                                       {QStringLiteral("priority"), service.priority},
                                       {QStringLiteral("date"), service.date.toString(Qt::ISODate)},
                                       {QStringLiteral("catalogue_url"), service.dburl ? service.dburl->toString() : QString()}});
    const QDateTime newest = defaults.dateForKey(DefaultKeys::newestDatabaseKnown);
    const QJsonObject result{
        {QStringLiteral("catalogue"), restaurants.databaseVersionDate() ? restaurants.databaseVersionDate()->toString(Qt::ISODate) : QString()},
        {QStringLiteral("internet"), internet},
        {QStringLiteral("sources"), sources},
        {QStringLiteral("newest_database_known"), newest.isValid() ? newest.date().toString(Qt::ISODate) : QString()},
        {QStringLiteral("newer_known"), checker.isNewerDatabaseKnown()},
    };
    QTextStream(stdout) << QJsonDocument(result).toJson(QJsonDocument::Compact) << "\n";
    if (!internet.value(QStringLiteral("answered")).toBool() && sources.isEmpty()) {
        QTextStream(stderr) << "velmora: no update source answered (Internet: " << checker.internetURL().toString()
                            << "; no update server found on the local network)\n";
        return 1;
    }
    return 0;
}

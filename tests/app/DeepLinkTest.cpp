#include "app/DeepLink.h"
#include "app/LaunchOptions.h"
#include "fixtures/CatalogueFixture.h"
#include "fixtures/TestHome.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>

#include <gtest/gtest.h>

namespace {
DeepLink link(DeepLink::Kind kind, int id = 0, const QString &text = QString())
{
    DeepLink expected;
    expected.kind = kind;
    expected.id = id;
    expected.text = text;
    return expected;
}
}

// Catches: ids taken loosely (signs, zero, huge, trailing text), queries or paths accepted where
// a destination has none, the search text not decoded, and other schemes followed.
TEST(DeepLink, ParsesEveryDestinationAndRefusesTheRest)
{
    using K = DeepLink::Kind;
    EXPECT_EQ(DeepLink::parse(QStringLiteral("velmora://place/1015")), link(K::Place, 1015));
    EXPECT_EQ(DeepLink::parse(QStringLiteral("VELMORA://Province/3")), link(K::Province, 3));
    EXPECT_EQ(DeepLink::parse(QStringLiteral("velmora://search?q=caf%C3%A9%20del%20mar")), link(K::Search, 0, QStringLiteral("café del mar")));
    EXPECT_EQ(DeepLink::parse(QStringLiteral("velmora://search")), link(K::Search));
    EXPECT_EQ(DeepLink::parse(QStringLiteral("velmora://map")), link(K::Map));
    EXPECT_EQ(DeepLink::parse(QStringLiteral("velmora://map?place=7")), link(K::Map, 7));
    for (const auto &[text, kind] : std::vector<std::pair<const char *, K>>{
             {"velmora://myplaces", K::MyPlaces}, {"velmora://settings/", K::Settings}, {"velmora://info", K::Info},
             {"velmora://offers", K::Offers}, {"velmora://discover", K::Discover}})
        EXPECT_EQ(DeepLink::parse(QString::fromLatin1(text)), link(kind)) << text;

    for (const char *bad : {"velmora://place/", "velmora://place/0", "velmora://place/-4", "velmora://place/+4",
                            "velmora://place/12abc", "velmora://place/9999999999", "velmora://place/5?x=1",
                            "velmora://place", "velmora://map?place=x", "velmora://search?text=a", "velmora://info/more",
                            "velmora://nowhere", "http://place/5", "velmora:place/5", "", "velmora://user@place/5",
                            "velmora://place/5#top", "velmora://place:80/5"}) {
        QString why;
        EXPECT_FALSE(DeepLink::parse(QString::fromLatin1(bad), &why)) << bad;
        EXPECT_FALSE(why.isEmpty()) << bad;
    }
}

// Catches: a link or Qt's own options refused, --help needing more than itself, values missing
// taken as the next option, and unknown options let through.
TEST(DeepLink, CommandLine)
{
    const auto parse = [](QStringList arguments) {
        arguments.prepend(QStringLiteral("velmora"));
        return LaunchOptions::parse(arguments);
    };
    const LaunchOptions run = parse({QStringLiteral("--home"), QStringLiteral("/h"), QStringLiteral("-platform"),
                                     QStringLiteral("offscreen"), QStringLiteral("--dump-ui"), QStringLiteral("velmora://info")});
    EXPECT_EQ(run.action, LaunchOptions::Action::Run);
    EXPECT_EQ(run.home, QStringLiteral("/h"));
    EXPECT_EQ(run.link, QStringLiteral("velmora://info"));
    EXPECT_TRUE(run.dumpUi && run.reportsAndQuits());
    EXPECT_EQ(parse({QStringLiteral("--open"), QStringLiteral("velmora://map")}).link, QStringLiteral("velmora://map"));
    EXPECT_EQ(parse({QStringLiteral("--bogus"), QStringLiteral("--help")}).action, LaunchOptions::Action::Refuse);
    EXPECT_EQ(parse({QStringLiteral("--self-test"), QStringLiteral("-h")}).action, LaunchOptions::Action::Help);
    EXPECT_EQ(parse({QStringLiteral("--version")}).action, LaunchOptions::Action::Version);
    EXPECT_EQ(parse({QStringLiteral("--home")}).action, LaunchOptions::Action::Refuse);
    // The command line wins over the environment, which stands in when it says nothing.
    qputenv("VELMORA_HOME", "/from/env");
    EXPECT_EQ(parse({QStringLiteral("--home"), QStringLiteral("/from/args")}).home, QStringLiteral("/from/args"));
    EXPECT_EQ(parse({}).home, QStringLiteral("/from/env"));
    qunsetenv("VELMORA_HOME");
    EXPECT_TRUE(parse({}).home.isEmpty());
    EXPECT_EQ(parse({QStringLiteral("velmora://a"), QStringLiteral("velmora://b")}).action, LaunchOptions::Action::Refuse);
    EXPECT_TRUE(LaunchOptions::usage().contains(QStringLiteral("--dump-ui")));
}

namespace {
struct Run {
    int status = -1;
    QByteArray out;
    QByteArray err;
};

Run velmora(const QStringList &arguments)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    process.setProcessEnvironment(environment);
    process.start(QStringLiteral(VELMORA_APP), arguments);
    process.waitForFinished(30000);
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1, process.readAllStandardOutput(),
            process.readAllStandardError()};
}

QJsonArray dumpOf(const TestHome &home, const QString &link)
{
    const Run run = velmora({QStringLiteral("--home"), home.root(), QStringLiteral("--open"), link, QStringLiteral("--dump-ui")});
    EXPECT_EQ(run.status, 0) << run.err.toStdString();
    const QByteArray last = run.out.trimmed().split('\n').last();
    return QJsonDocument::fromJson(last).array();
}

QStringList namesIn(const QJsonArray &dump)
{
    QStringList names;
    for (const QJsonValue &node : dump)
        names.append(node.toObject().value(QStringLiteral("name")).toString());
    return names;
}
}

// Catches: a link followed on the wrong screen or not at all, the dump missing what the screen
// shows, and any visible control or glyph that no name explains, on every screen a link reaches.
TEST(DeepLink, EveryLinkOpensItsScreenAndEveryControlIsNamed)
{
    TestHome home;
    CatalogueFixture fixture = CatalogueFixture::small();
    fixture.sql = {QStringLiteral("UPDATE restaurants SET latitud = 23.14, longitud = -82.35 WHERE id = 100")};
    home.addCatalogue(fixture, QStringLiteral("velmora-20170101.db"));
    const auto &place = fixture.places.first();

    // A place's map: zoomed on it with its callout, a way back to its card.
    const QStringList map = namesIn(dumpOf(home, QStringLiteral("velmora://map?place=100")));
    EXPECT_TRUE(map.contains(QStringLiteral("Map")) && map.contains(place.name) && map.contains(QStringLiteral("Back")))
        << map.join(QLatin1Char('|')).toStdString();

    const QStringList card = namesIn(dumpOf(home, QStringLiteral("velmora://place/%1").arg(place.id)));
    EXPECT_TRUE(card.contains(place.name)) << card.join(QLatin1Char('|')).toStdString();
    EXPECT_FALSE(card.filter(place.address).isEmpty()) << card.join(QLatin1Char('|')).toStdString();
    ASSERT_TRUE(place.phone);
    EXPECT_TRUE(card.contains(QStringLiteral("Call")));
    EXPECT_TRUE(card.contains(QStringLiteral("Back")));

    for (const QString &link : {QStringLiteral("velmora://search?q=a"), QStringLiteral("velmora://province/1"),
                                QStringLiteral("velmora://map"), QStringLiteral("velmora://myplaces"),
                                QStringLiteral("velmora://settings"), QStringLiteral("velmora://info"),
                                QStringLiteral("velmora://offers"), QStringLiteral("velmora://discover"),
                                QStringLiteral("velmora://nowhere"), QStringLiteral("velmora://place/99999")}) {
        const QJsonArray dump = dumpOf(home, link);
        EXPECT_FALSE(dump.isEmpty()) << link.toStdString();
        for (const QJsonValue &node : dump)
            EXPECT_FALSE(node.toObject().value(QStringLiteral("name")).toString().isEmpty())
                << link.toStdString() << ": " << QJsonDocument(node.toObject()).toJson(QJsonDocument::Compact).toStdString();
    }
    EXPECT_TRUE(namesIn(dumpOf(home, QStringLiteral("velmora://province/2"))).contains(QStringLiteral("Province: Matanzas, choose another")));
    EXPECT_FALSE(namesIn(dumpOf(home, QStringLiteral("velmora://province/77"))).filter(QStringLiteral("Province: ")).isEmpty());

    // With no catalogue yet, the first-run screen.
    TestHome empty;
    const QJsonArray welcome = dumpOf(empty, QStringLiteral("velmora://info"));
    EXPECT_TRUE(namesIn(welcome).contains(QStringLiteral("Download the catalogue")));
    EXPECT_TRUE(namesIn(welcome).contains(QStringLiteral("I have a catalogue file")));
    for (const QJsonValue &node : welcome)
        EXPECT_FALSE(node.toObject().value(QStringLiteral("name")).toString().isEmpty());

    // The side menu's screens replace the list: their own title is what the dump starts with.
    EXPECT_TRUE(namesIn(dumpOf(home, QStringLiteral("velmora://settings"))).contains(QStringLiteral("Settings")));
    EXPECT_TRUE(namesIn(dumpOf(home, QStringLiteral("velmora://search?q=a"))).contains(QStringLiteral("Search places")));
}

// Catches: --help or --version touching the home or needing a display, and unknown options
// accepted or refused with the wrong status.
TEST(DeepLink, HelpAndVersionAnswerAnywhere)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("QT_QPA_PLATFORM"));
    environment.remove(QStringLiteral("DISPLAY"));
    environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    process.setProcessEnvironment(environment);
    TestHome home;
    const QString untouched = home.root() + QStringLiteral("/never");
    for (const QString &option : {QStringLiteral("--help"), QStringLiteral("--version")}) {
        process.start(QStringLiteral(VELMORA_APP), {QStringLiteral("--home"), untouched, option});
        ASSERT_TRUE(process.waitForFinished(10000));
        EXPECT_EQ(process.exitCode(), 0) << option.toStdString();
        EXPECT_FALSE(process.readAllStandardOutput().isEmpty());
    }
    EXPECT_FALSE(QFileInfo::exists(untouched));
    process.start(QStringLiteral(VELMORA_APP), {QStringLiteral("--frobnicate")});
    ASSERT_TRUE(process.waitForFinished(10000));
    EXPECT_EQ(process.exitCode(), 2);
    EXPECT_TRUE(process.readAllStandardError().contains("--dump-ui"));
}

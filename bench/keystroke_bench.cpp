// The whole work of one keystroke in the search bar over the capital of a generated catalogue:
// free text, the capital's filters, the sorted listing and its sections. Fifty-odd prefixes of
// names and addresses, one to six letters, with and without accents, each typed several times;
// the same keystroke with a LIKE scan of the catalogue in place of the index, for the ratio.
//   VELMORA_BENCH_DOCUMENTS=DIR keystroke_bench [repetitions]
// Prints one row for scripts/bench's table and a hash of every listing, so that a faster run is
// seen to list the same places.

#include "browse/LugaresTableViewController.h"
#include "catalogue/Restaurants.h"
#include "platform/Database.h"
#include "platform/DatabaseQueue.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {
const QStringList prefixes = {
    // names, from one letter to six
    QStringLiteral("b"), QStringLiteral("bo"), QStringLiteral("bod"), QStringLiteral("bode"), QStringLiteral("bodeg"),
    QStringLiteral("bodegu"), QStringLiteral("c"), QStringLiteral("ca"), QStringLiteral("cas"), QStringLiteral("casa"),
    QStringLiteral("l"), QStringLiteral("la"), QStringLiteral("la g"), QStringLiteral("gua"), QStringLiteral("guari"),
    QStringLiteral("p"), QStringLiteral("pa"), QStringLiteral("pal"), QStringLiteral("pala"), QStringLiteral("palad"),
    QStringLiteral("e"), QStringLiteral("el"), QStringLiteral("el r"), QStringLiteral("rinc"), QStringLiteral("ceib"),
    QStringLiteral("deg"), QStringLiteral("uita"), QStringLiteral("m"), QStringLiteral("me"), QStringLiteral("med"),
    QStringLiteral("medio"), QStringLiteral("s"), QStringLiteral("sa"), QStringLiteral("sab"), QStringLiteral("sabor"),
    // with accents, which the index folds
    QStringLiteral("ñ"), QStringLiteral("ña"), QStringLiteral("mansión"), QStringLiteral("café"), QStringLiteral("á"),
    QStringLiteral("jardín"),
    // addresses
    QStringLiteral("calle"), QStringLiteral("cal"), QStringLiteral("ave"), QStringLiteral("aveni"), QStringLiteral("obis"),
    QStringLiteral("prado"), QStringLiteral("23"), QStringLiteral("5"), QStringLiteral("esq"), QStringLiteral("malec"),
    QStringLiteral("x"), QStringLiteral("zz"), QStringLiteral("qwerty"),
};

double percentile(std::vector<double> values, double p)
{
    std::sort(values.begin(), values.end());
    const size_t at = std::min(values.size() - 1, size_t(p * double(values.size() - 1) + 0.5));
    return values[at];
}

Filters capital(Restaurants &restaurants)
{
    Filters filters;
    filters.municipalities = restaurants.province(1)->municipalityIds();
    return filters;
}

QSet<int> likeScan(Restaurants &restaurants, const QString &text)
{
    const QString pattern = QLatin1Char('%') + text + QLatin1Char('%');
    QSet<int> ids;
    restaurants.dbq()->inDatabase([&](Database &db) {
        db.forEachRow(QStringLiteral("SELECT id FROM restaurants WHERE name LIKE ? OR address LIKE ?"), {pattern, pattern},
                      [&](const ResultSet &row) {
                          ids.insert(row.intForColumn(0));
                          return true;
                      });
    });
    return ids;
}
}

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int repetitions = argc > 1 ? std::max(1, atoi(argv[1])) : 5;
    QTemporaryDir caches;
    Restaurants restaurants({qEnvironmentVariable("VELMORA_BENCH_DOCUMENTS"), caches.path(), nullptr, QStringLiteral("es"), QString()});
    if (!restaurants.ready())
        qFatal("no catalogue");
    restaurants.waitForSearchIndex();
    const Filters filters = capital(restaurants);
    const bool hideClosed = true;

    QCryptographicHash hash(QCryptographicHash::Sha1);
    const QList<int> capitalPlaces = restaurants.province(1)->restaurants;
    // As the search screen: the province's matches, the filters, the listing, the sections.
    const auto keystroke = [&](const QString &text, bool like) {
        QSet<int> ids = restaurants.filteredIds(filters, hideClosed);
        ids.intersect(like ? likeScan(restaurants, text) : restaurants.searchIds(text, capitalPlaces));
        const QList<Section> sections = groupIntoSections(restaurants.sortedEntries(ids, text));
        return sections;
    };
    keystroke(QStringLiteral("a"), false); // the listing is read once per catalogue, at the first list

    std::vector<double> index, like;
    qsizetype listedMax = 0;
    for (int r = 0; r < repetitions; ++r)
        for (const QString &text : prefixes) {
            QElapsedTimer timer;
            timer.start();
            const QList<Section> sections = keystroke(text, false);
            index.push_back(double(timer.nsecsElapsed()) / 1e6);
            if (r == 0) {
                qsizetype listed = 0;
                for (const Section &section : sections) {
                    hash.addData(section.name.toUtf8());
                    for (int id : section.ids)
                        hash.addData(QByteArrayView(reinterpret_cast<const char *>(&id), sizeof id));
                    listed += section.ids.size();
                }
                listedMax = std::max(listedMax, listed);
            }
        }
    for (const QString &text : prefixes) {
        QElapsedTimer timer;
        timer.start();
        keystroke(text, true);
        like.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    const double median = percentile(index, 0.5), likeMedian = percentile(like, 0.5);
    std::printf("| %8d | %8lld | %9.2f | %8.2f | %8.2f | %9.2f | %7.0fx | %s |\n", int(restaurants.provinces().value(1)->restaurants.size()),
                qlonglong(listedMax), median, percentile(index, 0.99), percentile(index, 1.0), likeMedian,
                median > 0 ? likeMedian / median : 0.0, hash.result().toHex().left(12).constData());
    return 0;
}

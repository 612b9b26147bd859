// The whole work of one keystroke in the search bar over the capital of a generated catalogue:
// free text, the capital's filters, the sorted listing and its sections. Fifty-odd prefixes of
// names and addresses, one to six letters, with and without accents, each typed several times;
// the same keystroke with a LIKE scan of the catalogue in place of the index, for the ratio.
//   VELMORA_BENCH_DOCUMENTS=DIR keystroke_bench [repetitions] [--export FILE]
// --export writes what SQLite's FTS5 needs to do the same keystroke (bench/fts5_anchor.py): every
// place's folded name and address, whether it passes the capital's filters and its place in the
// list, then each prefix with the places this run listed and the times it took.
// Prints one row for scripts/bench's table and a hash of every listing, so that a faster run is
// seen to list the same places.

#include "browse/LugaresTableViewController.h"
#include "catalogue/PlaceGrams.h"
#include "catalogue/PlaceListing.h"
#include "catalogue/Restaurants.h"
#include "catalogue/SearchTerms.h"
#include "platform/Database.h"
#include "platform/DatabaseQueue.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QElapsedTimer>
#include <QFile>
#include <QTextStream>
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

void exportForAnchor(Restaurants &restaurants, const Filters &filters, bool hideClosed,
                     const QHash<QString, std::vector<double>> &timesOf, const QHash<QString, QList<int>> &listedOf,
                     const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        qFatal("can't write %s", qPrintable(path));
    QTextStream out(&file);
    const QSet<int> passing = restaurants.filteredIds(filters, hideClosed);
    QHash<int, int> rankOf;
    for (const SortedEntry &entry : restaurants.searchListing(filters, hideClosed, QString()))
        rankOf.insert(entry.id, int(rankOf.size()));
    // The text as the app's matching reads it: the same folding and the same limits.
    const auto clean = [](QString text) { return text.replace(QLatin1Char('\t'), QLatin1Char(' ')).replace(QLatin1Char('\n'), QLatin1Char(' ')); };
    std::vector<QString> names, addresses;
    restaurants.dbq()->inDatabase([&](Database &db) {
        db.forEachRow(QStringLiteral("SELECT id, name, address FROM restaurants"), {}, [&](const ResultSet &row) {
            const int id = row.intForColumn(0);
            names.push_back(clean(foldForSearch(indexedNameWords(row.stringForColumn(1)).join(QLatin1Char(' ')))));
            addresses.push_back(clean(foldForSearch(row.stringForColumn(2).left(maxIndexedAddressLength))));
            out << "P\t" << id << '\t' << names.back() << '\t' << addresses.back() << '\t' << int(passing.contains(id))
                << '\t' << rankOf.value(id, -1) << '\n';
            return true;
        });
    });
    // The app's index of letter pairs over the same folded text: the part that compares with
    // FTS5's inserts.
    std::vector<double> builds;
    for (int i = 0; i < 3; ++i) {
        QElapsedTimer timer;
        timer.start();
        const PlaceGrams grams(
            names.size(), [&](size_t place) { return QStringView(names[place]); },
            [&](size_t place) { return QStringView(addresses[place]); });
        builds.push_back(double(timer.nsecsElapsed()) / 1e6);
        if (grams.bytes() == 0)
            qFatal("no pairs");
    }
    out << "B\t" << percentile(builds, 0.5) << '\n';
    for (const QString &text : prefixes) {
        QStringList times, ids;
        for (const double ms : timesOf.value(text))
            times.append(QString::number(ms, 'f', 4));
        for (const int id : listedOf.value(text))
            ids.append(QString::number(id));
        out << "Q\t" << text << '\t' << times.join(QLatin1Char(',')) << '\t' << ids.join(QLatin1Char(',')) << '\n';
    }
}
}

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int repetitions = argc > 1 ? std::max(1, atoi(argv[1])) : 5;
    const QStringList arguments = QCoreApplication::arguments();
    const qsizetype exportAt = arguments.indexOf(QStringLiteral("--export"));
    const QString exportPath = exportAt > 0 && exportAt + 1 < arguments.size() ? arguments.at(exportAt + 1) : QString();
    QTemporaryDir caches;
    Restaurants restaurants({qEnvironmentVariable("VELMORA_BENCH_DOCUMENTS"), caches.path(), nullptr, QStringLiteral("es"), QString()});
    if (!restaurants.ready())
        qFatal("no catalogue");
    restaurants.waitForSearchIndex();
    const Filters filters = capital(restaurants);
    const bool hideClosed = true;

    QCryptographicHash hash(QCryptographicHash::Sha1);
    // As the search screen: the province's matches, the filters, the listing, the sections.
    const auto keystroke = [&](const QString &text, bool like) {
        if (!like)
            return groupIntoSections(restaurants.searchListing(filters, hideClosed, text));
        QSet<int> ids = restaurants.filteredIds(filters, hideClosed);
        ids.intersect(likeScan(restaurants, text));
        return groupIntoSections(restaurants.sortedEntries(ids, text));
    };
    keystroke(QStringLiteral("a"), false); // the listing is read once per catalogue, at the first list

    std::vector<double> index, like, shortWords, longWords;
    QHash<QString, std::vector<double>> timesOf;
    QHash<QString, QList<int>> listedOf;
    qsizetype listedMax = 0;
    for (int r = 0; r < repetitions; ++r)
        for (const QString &text : prefixes) {
            QElapsedTimer timer;
            timer.start();
            const QList<Section> sections = keystroke(text, false);
            const double ms = double(timer.nsecsElapsed()) / 1e6;
            index.push_back(ms);
            timesOf[text].push_back(ms);
            qsizetype listed = 0;
            for (const Section &section : sections) {
                listed += section.ids.size();
                if (r == 0) {
                    listedOf[text] += section.ids;
                    hash.addData(section.name.toUtf8());
                    for (int id : section.ids)
                        hash.addData(QByteArrayView(reinterpret_cast<const char *>(&id), sizeof id));
                }
            }
            listedMax = std::max(listedMax, listed);
            // Typed text of one or two letters (spaces aside) against longer text.
            (QString(text).remove(QLatin1Char(' ')).size() <= 2 ? shortWords : longWords).push_back(ms);
            if (qEnvironmentVariableIsSet("VELMORA_BENCH_EACH"))
                std::fprintf(stderr, "%-8s %7.2f ms %6lld listed\n", qPrintable(text), ms, qlonglong(listed));
        }
    for (const QString &text : prefixes) {
        QElapsedTimer timer;
        timer.start();
        keystroke(text, true);
        like.push_back(double(timer.nsecsElapsed()) / 1e6);
    }
    const double median = percentile(index, 0.5), likeMedian = percentile(like, 0.5);
    if (!exportPath.isEmpty())
        exportForAnchor(restaurants, filters, hideClosed, timesOf, listedOf, exportPath);
    const double shortMedian = percentile(shortWords, 0.5), longMedian = percentile(longWords, 0.5);
    std::printf("| %8d | %8lld | %6.2f | %5.2f | %7.2f | %11.2f | %10.2f | %10.2fx | %9.2f | %7.0fx | %s |\n",
                int(restaurants.provinces().value(1)->restaurants.size()), qlonglong(listedMax), median, percentile(index, 0.99),
                percentile(index, 1.0), shortMedian, longMedian, longMedian > 0 ? shortMedian / longMedian : 0.0, likeMedian,
                median > 0 ? likeMedian / median : 0.0, hash.result().toHex().left(12).constData());
    return 0;
}

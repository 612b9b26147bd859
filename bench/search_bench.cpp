// The search screen's work on a generated catalogue: building the index, and one keystroke
// (free text, filters of the capital, the sorted listing), against a plain LIKE scan.
//   VELMORA_BENCH_DOCUMENTS=DIR VELMORA_BENCH_PLACES=N search_bench   (DIR holds one catalogue of N places)
// After Google Benchmark's own report it prints one summary row for scripts/bench's table.

#include "catalogue/PlaceListing.h"
#include "catalogue/Restaurants.h"
#include "platform/Database.h"
#include "platform/DatabaseQueue.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <sys/resource.h>

#include <cstdio>
#include <map>
#include <set>
#include <memory>
#include <string>

namespace {
const QString typed = QStringLiteral("bod");

QString documents() { return qEnvironmentVariable("VELMORA_BENCH_DOCUMENTS"); }

QTemporaryDir &caches()
{
    static QTemporaryDir dir;
    return dir;
}

std::unique_ptr<Restaurants> openCatalogue()
{
    auto restaurants = std::make_unique<Restaurants>(Restaurants::Environment{documents(), caches().path(), nullptr, "es", QString()});
    if (!restaurants->ready())
        qFatal("no catalogue in %s", qPrintable(documents()));
    return restaurants;
}

// What the search screen asks for the capital: every municipality, closed places hidden.
Filters capital(Restaurants &restaurants)
{
    Filters filters;
    filters.municipalities = restaurants.province(1)->municipalityIds();
    return filters;
}

qsizetype keystroke(Restaurants &restaurants, const Filters &filters, const QSet<int> &textIds)
{
    QSet<int> ids = restaurants.filteredIds(filters, true);
    ids.intersect(textIds);
    return restaurants.sortedEntries(ids, typed).size();
}

// Every place's sort name, name and address read and ranked: what the first list waits for.
void BM_ListingRead(benchmark::State &state)
{
    // The file itself, without a Restaurants: its index build would share the cores.
    const QFileInfoList files = QDir(documents()).entryInfoList({QStringLiteral("*.db")}, QDir::Files);
    const QString path = files.isEmpty() ? QString() : files.first().filePath();
    Database db(path);
    if (!db.openWithFlags(Database::ReadOnly) || !db.setKey(Restaurants::dbkey))
        qFatal("can't open %s", qPrintable(path));
    QString error;
    for (auto _ : state)
        benchmark::DoNotOptimize(PlaceListing::read(db, error));
}
BENCHMARK(BM_ListingRead)->Unit(benchmark::kMillisecond);

void BM_IndexBuild(benchmark::State &state)
{
    auto restaurants = openCatalogue();
    for (auto _ : state) {
        restaurants->openSearchIndex(true);
        restaurants->waitForSearchIndex(); // the build runs in the background
    }
    state.counters["fts_kB"] = double(QFileInfo(caches().path() + QStringLiteral("/fts.db")).size()) / 1024.0;
}
BENCHMARK(BM_IndexBuild)->Unit(benchmark::kMillisecond)->Iterations(2);

// A keystroke with nothing cached: the first search after opening the catalogue.
void BM_KeystrokeCold(benchmark::State &state)
{
    qsizetype found = 0;
    for (auto _ : state) {
        state.PauseTiming();
        auto restaurants = openCatalogue();
        const Filters filters = capital(*restaurants);
        state.ResumeTiming();
        found = keystroke(*restaurants, filters, restaurants->searchIds(typed));
        state.PauseTiming();
        restaurants.reset();
        state.ResumeTiming();
    }
    state.counters["listed"] = double(found);
}
BENCHMARK(BM_KeystrokeCold)->Unit(benchmark::kMillisecond)->Iterations(5);

// The next keystrokes: sort names cached.
void BM_KeystrokeWarm(benchmark::State &state)
{
    auto restaurants = openCatalogue();
    const Filters filters = capital(*restaurants);
    keystroke(*restaurants, filters, restaurants->searchIds(typed));
    qsizetype found = 0;
    for (auto _ : state)
        found = keystroke(*restaurants, filters, restaurants->searchIds(typed));
    state.counters["listed"] = double(found);
}
BENCHMARK(BM_KeystrokeWarm)->Unit(benchmark::kMillisecond);

// The filter step alone: the capital's places, closed ones hidden.
void BM_FilterCapital(benchmark::State &state)
{
    auto restaurants = openCatalogue();
    const Filters filters = capital(*restaurants);
    qsizetype found = 0;
    for (auto _ : state)
        found = restaurants->filteredIds(filters, true).size();
    state.counters["places"] = double(found);
}
BENCHMARK(BM_FilterCapital)->Unit(benchmark::kMillisecond);

// The listing step alone, warm.
void BM_SortedEntriesWarm(benchmark::State &state)
{
    auto restaurants = openCatalogue();
    QSet<int> ids = restaurants->filteredIds(capital(*restaurants), true);
    ids.intersect(restaurants->searchIds(typed));
    restaurants->sortedEntries(ids, typed);
    for (auto _ : state)
        benchmark::DoNotOptimize(restaurants->sortedEntries(ids, typed));
    state.counters["places"] = double(ids.size());
}
BENCHMARK(BM_SortedEntriesWarm)->Unit(benchmark::kMillisecond);

// The free-text step alone through the index...
void BM_TextIndex(benchmark::State &state)
{
    auto restaurants = openCatalogue();
    qsizetype found = 0;
    for (auto _ : state)
        found = restaurants->searchIds(typed).size();
    state.counters["matches"] = double(found);
}
BENCHMARK(BM_TextIndex)->Unit(benchmark::kMillisecond);

// ...and the same through a scan of the ciphered catalogue (this SQLite has no FTS5 trigram).
void BM_TextLikeScan(benchmark::State &state)
{
    auto restaurants = openCatalogue();
    const QString pattern = QLatin1Char('%') + typed + QLatin1Char('%');
    qsizetype found = 0;
    for (auto _ : state) {
        QSet<int> ids;
        restaurants->dbq()->inDatabase([&](Database &db) {
            db.forEachRow(QStringLiteral("SELECT id FROM restaurants WHERE name LIKE ? OR address LIKE ?"), {pattern, pattern},
                          [&](const ResultSet &row) {
                              ids.insert(row.intForColumn(0));
                              return true;
                          });
        });
        found = ids.size();
    }
    state.counters["matches"] = double(found);
}
BENCHMARK(BM_TextLikeScan)->Unit(benchmark::kMillisecond);
}

// Passes everything to the console and keeps each benchmark's median for the summary row.
class MedianCollector : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run> &runs) override
    {
        // A single repetition has no aggregates: its own run stands for the median.
        for (const Run &run : runs) {
            const bool median = run.aggregate_name == "median";
            const std::string name = run.run_name.function_name;
            if (!median && (run.run_type != Run::RT_Iteration || medianSeen.count(name)))
                continue;
            if (median)
                medianSeen.insert(name);
            medians[name] = run.GetAdjustedRealTime();
            for (const auto &[counter, value] : run.counters)
                counters[name + "." + counter] = value;
        }
        ConsoleReporter::ReportRuns(runs);
    }
    std::map<std::string, double> medians;
    std::map<std::string, double> counters;
    std::set<std::string> medianSeen;
};

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    MedianCollector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);
    benchmark::Shutdown();
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    // One row of the table scripts/bench prints: medians in ms unless said.
    auto &m = collector.medians;
    const double like = m["BM_TextLikeScan"], index = m["BM_TextIndex"];
    std::printf("\n| %8.0f | %9.0f | %8.0f | %8.2f | %8.2f | %8.3f | %8.2f | %6.0fx | %7ld |\n",
                double(qEnvironmentVariableIntValue("VELMORA_BENCH_PLACES")),
                m["BM_IndexBuild"], collector.counters["BM_IndexBuild.fts_kB"], m["BM_KeystrokeCold"],
                m["BM_KeystrokeWarm"], index, like, index > 0 ? like / index : 0.0, usage.ru_maxrss / 1024);
    return 0;
}

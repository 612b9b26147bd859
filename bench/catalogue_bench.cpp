// Reads of the place list and the place card on a generated catalogue.
//   VELMORA_BENCH_DOCUMENTS=DIR catalogue_bench   (DIR holds one catalogue, e.g. 20,000 places)

#include "catalogue/Restaurants.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <benchmark/benchmark.h>

#include <memory>

namespace {
QString documents() { return qEnvironmentVariable("VELMORA_BENCH_DOCUMENTS"); }

std::unique_ptr<Restaurants> openCatalogue(const QTemporaryDir &caches)
{
    auto restaurants = std::make_unique<Restaurants>(Restaurants::Environment{documents(), caches.path(), nullptr, "es", QString()});
    if (!restaurants->ready())
        qFatal("no catalogue in %s", qPrintable(documents()));
    return restaurants;
}

QList<int> allPlaces(Restaurants &restaurants)
{
    QList<int> ids;
    for (const auto &province : restaurants.provinces())
        ids += province->restaurants;
    return ids;
}

// Every place's brief with an empty cache: what the lists cost the first time through.
void BM_BriefAllCold(benchmark::State &state)
{
    QTemporaryDir caches;
    qint64 names = 0;
    for (auto _ : state) {
        state.PauseTiming();
        auto restaurants = openCatalogue(caches);
        const QList<int> ids = allPlaces(*restaurants);
        state.ResumeTiming();
        for (int id : ids)
            names += restaurants->brief(id)->name.size();
        state.PauseTiming();
        state.counters["places"] = double(ids.size());
        restaurants.reset();
        state.ResumeTiming();
    }
    benchmark::DoNotOptimize(names);
}
BENCHMARK(BM_BriefAllCold)->Unit(benchmark::kMillisecond)->Iterations(3);

// The same with every brief cached: what a scroll through a list costs afterwards.
void BM_BriefAllWarm(benchmark::State &state)
{
    QTemporaryDir caches;
    auto restaurants = openCatalogue(caches);
    const QList<int> ids = allPlaces(*restaurants);
    for (int id : ids)
        restaurants->brief(id);
    qint64 names = 0;
    for (auto _ : state)
        for (int id : ids)
            names += restaurants->brief(id)->name.size();
    state.counters["places"] = double(ids.size());
    benchmark::DoNotOptimize(names);
}
BENCHMARK(BM_BriefAllWarm)->Unit(benchmark::kMillisecond);

// One place card's record.
void BM_RestaurantInfo(benchmark::State &state)
{
    QTemporaryDir caches;
    auto restaurants = openCatalogue(caches);
    const int id = allPlaces(*restaurants).value(allPlaces(*restaurants).size() / 2);
    for (auto _ : state)
        benchmark::DoNotOptimize(restaurants->restaurantInfo(id));
}
BENCHMARK(BM_RestaurantInfo)->Unit(benchmark::kMicrosecond);
}

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

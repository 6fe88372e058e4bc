// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/ItemStore.h"
#include "platform/Literals.h"
#include "tests/fixtures/FeedTexts.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <benchmark/benchmark.h>

#include <QDate>

#include <ctime>

namespace {

/// Of the processor, so that other programs disturb little.
double secondsNow()
{
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

/// Merges 10,000 items into 30,000. `merge_to_load` is the time of the merge, without its save, as a part of the time
/// of loading the two files; the floor is 1.2.
void mergeTenThousandIntoThirtyThousand(benchmark::State &state, const QString &freshPrefix)
{
    const TemporaryDataDirectory folder;
    const QString storePath = folder.file(u"store.xml"_s);
    const QString freshPath = folder.file(u"fresh.xml"_s);
    Files::write(storePath, FeedTexts::rss(u"T"_s, FeedTexts::titles(u"item"_s, 0, 30000)));
    Files::write(freshPath, FeedTexts::rss(u"T"_s, FeedTexts::titles(freshPrefix, 0, 10000)));
    CachedFeed marked; // a cache file bears the date of download of each item
    marked.Load(storePath);
    marked.Save();
    const QByteArray storeText = Files::read(storePath).bytes;
    double loading = 0;
    double merging = 0;
    double saving = 0;
    for (auto _ : state) {
        Files::write(storePath, storeText);
        const double begin = secondsNow();
        const Clock now = [moment = QDateTime::currentDateTime()] { return moment; }; // as an update does
        CachedFeed fresh(now);
        CachedFeed store(now);
        if (fresh.Load(freshPath) != LoadOk || store.Load(storePath) != LoadOk)
            state.SkipWithError("the files don't load");
        const double loaded = secondsNow();
        QString havecache = u"0"_s;
        benchmark::DoNotOptimize(ItemStore::merge(fresh, store, u"7"_s, havecache, QDate::currentDate()));
        const double merged = secondsNow();
        store.Save();
        const double saved = secondsNow();
        loading += loaded - begin;
        saving += saved - merged;
        merging += merged - loaded;
        state.SetIterationTime(saved - begin);
    }
    state.counters["load_ms"] = 1000 * loading / static_cast<double>(state.iterations());
    state.counters["save_ms"] = 1000 * saving / static_cast<double>(state.iterations());
    state.counters["merge_to_load"] = merging / loading;
}

} // namespace

BENCHMARK_CAPTURE(mergeTenThousandIntoThirtyThousand, all_known, u"item"_s)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(mergeTenThousandIntoThirtyThousand, all_new, u"new"_s)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/ItemStore.h"
#include "platform/Literals.h"
#include "tests/fixtures/FeedTexts.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <benchmark/benchmark.h>

#include <QDate>

namespace {

/// What one finished download costs: the fresh file and the cache file are loaded, merged and saved. A tenth of the
/// items is new. The number of items is the argument.
class UpdateParts : public benchmark::Fixture
{
public:
    void SetUp(const benchmark::State &state) override
    {
        const int items = static_cast<int>(state.range(0));
        m_storeText = FeedTexts::rss(u"T"_s, FeedTexts::titles(u"item"_s, items / 10, items));
        Files::write(m_folder.file(u"fresh.xml"_s), FeedTexts::rss(u"T"_s, FeedTexts::titles(u"item"_s, 0, items)));
        restoreStore();
    }

protected:
    void restoreStore() const { Files::write(m_folder.file(u"store.xml"_s), m_storeText); }

    void load(CachedFeed &feed, const char *name, benchmark::State &state) const
    {
        if (feed.Load(m_folder.file(QLatin1String(name))) != LoadOk)
            state.SkipWithError("the file doesn't load");
    }

private:
    TemporaryDataDirectory m_folder;
    QByteArray m_storeText;
};

BENCHMARK_DEFINE_F(UpdateParts, loadFresh)(benchmark::State &state)
{
    for (auto _ : state) {
        CachedFeed fresh;
        load(fresh, "fresh.xml", state);
    }
}

BENCHMARK_DEFINE_F(UpdateParts, loadStore)(benchmark::State &state)
{
    for (auto _ : state) {
        CachedFeed store;
        load(store, "store.xml", state);
    }
}

BENCHMARK_DEFINE_F(UpdateParts, mergeAndSave)(benchmark::State &state)
{
    for (auto _ : state) {
        state.PauseTiming();
        restoreStore();
        CachedFeed fresh;
        CachedFeed store;
        load(fresh, "fresh.xml", state);
        load(store, "store.xml", state);
        QString havecache = u"0"_s;
        state.ResumeTiming();
        benchmark::DoNotOptimize(ItemStore::merge(fresh, store, u"7"_s, havecache, QDate::currentDate()));
        store.Save();
    }
}

BENCHMARK_DEFINE_F(UpdateParts, save)(benchmark::State &state)
{
    CachedFeed store;
    load(store, "store.xml", state);
    for (auto _ : state)
        store.Save();
}

} // namespace

BENCHMARK_REGISTER_F(UpdateParts, loadFresh)->Arg(20)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK_REGISTER_F(UpdateParts, loadStore)->Arg(20)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK_REGISTER_F(UpdateParts, mergeAndSave)->Arg(20)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK_REGISTER_F(UpdateParts, save)->Arg(20)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);

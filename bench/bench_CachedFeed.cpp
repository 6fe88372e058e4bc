// SPDX-License-Identifier: GPL-3.0-or-later

#include "bench/GeneratedFeeds.h"
#include "engine/feed/CachedFeed.h"
#include "platform/Files.h"
#include "platform/Literals.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <libxml/parser.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <ctime>
#include <fstream>
#include <functional>
#include <limits>
#include <memory>
#include <string>

namespace {

using Generator = QByteArray (*)(int);

struct TreeDeleter
{
    void operator()(xmlDoc *tree) const { xmlFreeDoc(tree); }
};

/// What the library alone does with the bytes of a feed.
std::unique_ptr<xmlDoc, TreeDeleter> parse(const QByteArray &bytes)
{
    constexpr int options = XML_PARSE_NONET | XML_PARSE_NOENT | XML_PARSE_COMPACT;
    return std::unique_ptr<xmlDoc, TreeDeleter>(
        xmlReadMemory(bytes.constData(), static_cast<int>(bytes.size()), nullptr, nullptr, options));
}

qsizetype readEveryField(const CachedFeed &feed)
{
    qsizetype characters = 0;
    ItemSource source;
    ItemEnclosure enclosure;
    for (qint16 i = 0; i < feed.ItemCount(); ++i) {
        characters += feed.ItemTitle(i).size() + feed.ItemLink(i).size() + feed.ItemDescription(i).size() +
                      feed.ItemCategory(i).size() + feed.ItemAuthor(i).size() + feed.ItemComments(i).size() +
                      feed.ItemPubDate(i).size() + feed.ItemDownloadDate(i).size();
        characters += feed.GetItemSource(i, source) + feed.GetItemEnclosure(i, enclosure);
        characters += feed.IsItemRead(i) + feed.IsItemDeleted(i);
    }
    return characters;
}

/// A line of /proc/self/status, in kilobytes.
long status(const std::string &field)
{
    std::ifstream file("/proc/self/status");
    for (std::string line; std::getline(file, line);)
        if (line.compare(0, field.size() + 1, field + ':') == 0)
            return std::stol(line.substr(field.size() + 1));
    return 0;
}

struct Cost
{
    double seconds = std::numeric_limits<double>::max(); ///< processor time, so that other programs disturb little
    double kilobytes = 0;                                ///< by how much the process grew at most
};

/// What `work` costs, in a process of its own, so that every piece of work begins alike.
Cost costOf(const std::function<void()> &work)
{
    int ends[2];
    if (pipe(ends) != 0)
        return {};
    malloc_trim(0);
    const pid_t child = fork();
    if (child == 0) {
        std::ofstream("/proc/self/clear_refs") << 5; // the peak starts from here
        const long before = status("VmRSS");
        const std::clock_t begin = std::clock();
        work();
        Cost cost;
        cost.seconds = static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
        cost.kilobytes = static_cast<double>(status("VmHWM") - before);
        _exit(write(ends[1], &cost, sizeof cost) == sizeof cost ? 0 : 1);
    }
    Cost cost;
    if (read(ends[0], &cost, sizeof cost) != sizeof cost)
        cost = {};
    waitpid(child, nullptr, 0);
    close(ends[0]);
    close(ends[1]);
    return cost;
}

/// The least of several rounds.
void keepLeast(Cost &least, const Cost &cost)
{
    if (cost.seconds < least.seconds)
        least = cost;
}

/// Loads a feed of so many items and reads every field of it, against the library's parse of the same bytes in the same
/// run, and saves it. Floors: `load_to_parse` 1.25, `fields_to_parse` 0.5, `save_to_parse` 1.5, `peak_to_parse`
/// (memory) 1.3.
void loadAndRead(benchmark::State &state, Generator generate)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(u"feed.xml"_s);
    Files::write(path, generate(static_cast<int>(state.range(0))));
    CachedFeed feed;
    if (feed.Load(path) != LoadOk || feed.ItemCount() != state.range(0))
        state.SkipWithError("the feed doesn't load");
    feed.Save(); // a cache file bears the date of download of each item

    Cost parsing;
    Cost saving;
    Cost loading;
    Cost reading;
    for (auto _ : state) {
        keepLeast(parsing, costOf([&] {
                      const QByteArray bytes = Files::read(path).bytes;
                      benchmark::DoNotOptimize(parse(bytes));
                  }));
        const Cost load = costOf([&] {
            CachedFeed fresh;
            benchmark::DoNotOptimize(fresh.Load(path));
        });
        keepLeast(loading, load);
        feed.Load(path); // what another process saved is another file
        keepLeast(reading, costOf([&] { benchmark::DoNotOptimize(readEveryField(feed)); }));
        keepLeast(saving, costOf([&] { feed.Save(); }));
        state.SetIterationTime(load.seconds);
    }
    state.counters["load_to_parse"] = loading.seconds / parsing.seconds;
    state.counters["fields_to_parse"] = reading.seconds / parsing.seconds;
    state.counters["peak_to_parse"] = loading.kilobytes / parsing.kilobytes;
    state.counters["peak_MB"] = loading.kilobytes / 1024;
    state.counters["parse_ms"] = 1000 * parsing.seconds;
    state.counters["save_to_parse"] = saving.seconds / parsing.seconds;
    state.counters["save_ms"] = 1000 * saving.seconds;
}

} // namespace

static void arguments(benchmark::internal::Benchmark *benchmark)
{
    benchmark->Arg(1000)->Arg(10000)->Arg(30000)->Iterations(5)->UseManualTime()->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(loadAndRead, rss20, GeneratedFeeds::rss20)->Apply(arguments);
BENCHMARK_CAPTURE(loadAndRead, rdf10, GeneratedFeeds::rdf10)->Apply(arguments);
BENCHMARK_CAPTURE(loadAndRead, atom03, GeneratedFeeds::atom03)->Apply(arguments);

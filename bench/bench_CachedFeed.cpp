#include "bench/GeneratedFeeds.h"
#include "engine/feed/CachedFeed.h"
#include "platform/Files.h"

#include <QTemporaryDir>

#include <benchmark/benchmark.h>
#include <libxml/parser.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
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

/// Processor time of the work, from a heap that has nothing left over from earlier work. Other programs don't disturb
/// it.
double secondsOf(const std::function<void()> &work)
{
    malloc_trim(0);
    const std::clock_t begin = std::clock();
    work();
    return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
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

/// By how many kilobytes a process grows at most that does `work`; in a child, so that each starts alike.
double peakOf(const std::function<void()> &work)
{
    int ends[2];
    if (pipe(ends) != 0)
        return 0;
    malloc_trim(0);
    const pid_t child = fork();
    if (child == 0) {
        std::ofstream("/proc/self/clear_refs") << 5; // the peak starts from here
        const long before = status("VmRSS");
        work();
        const long grown = status("VmHWM") - before;
        _exit(write(ends[1], &grown, sizeof grown) == sizeof grown ? 0 : 1);
    }
    long grown = 0;
    if (read(ends[0], &grown, sizeof grown) != sizeof grown)
        grown = 0;
    waitpid(child, nullptr, 0);
    close(ends[0]);
    close(ends[1]);
    return static_cast<double>(grown);
}

/// Loads a feed of so many items and reads every field of it, against the library's parse of the same bytes in the same
/// run. Floors: `load_to_parse` 1.25, `fields_to_parse` 0.5, `peak_to_parse` (memory) 1.3.
void loadAndRead(benchmark::State &state, Generator generate)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("feed.xml"));
    Files::write(path, generate(static_cast<int>(state.range(0))));
    const double parsePeak = peakOf([&] {
        const QByteArray bytes = Files::read(path).bytes;
        benchmark::DoNotOptimize(parse(bytes));
    });
    const double loadPeak = peakOf([&] {
        CachedFeed feed;
        benchmark::DoNotOptimize(feed.Load(path));
    });

    double parsing = std::numeric_limits<double>::max(); // the least of all rounds, as for the others
    double loading = parsing;
    double reading = parsing;
    for (auto _ : state) {
        parsing = std::min(parsing, secondsOf([&] {
                               const QByteArray bytes = Files::read(path).bytes;
                               benchmark::DoNotOptimize(parse(bytes));
                           }));
        const double load = secondsOf([&] {
            CachedFeed feed;
            benchmark::DoNotOptimize(feed.Load(path));
        });
        loading = std::min(loading, load);
        state.SetIterationTime(load);
        CachedFeed feed;
        if (feed.Load(path) != LoadOk || feed.ItemCount() != state.range(0))
            state.SkipWithError("the feed doesn't load");
        reading = std::min(reading, secondsOf([&] { benchmark::DoNotOptimize(readEveryField(feed)); }));
    }
    CachedFeed feed;
    feed.Load(path);
    const double saving = secondsOf([&] { feed.Save(); });
    state.counters["load_to_parse"] = loading / parsing;
    state.counters["fields_to_parse"] = reading / parsing;
    state.counters["peak_to_parse"] = loadPeak / parsePeak;
    state.counters["peak_MB"] = loadPeak / 1024;
    state.counters["first_save_ms"] = 1000 * saving;
}

} // namespace

static void arguments(benchmark::internal::Benchmark *benchmark)
{
    benchmark->Arg(1000)->Arg(10000)->Arg(30000)->Iterations(5)->UseManualTime()->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(loadAndRead, rss20, GeneratedFeeds::rss20)->Apply(arguments);
BENCHMARK_CAPTURE(loadAndRead, rdf10, GeneratedFeeds::rdf10)->Apply(arguments);
BENCHMARK_CAPTURE(loadAndRead, atom03, GeneratedFeeds::atom03)->Apply(arguments);

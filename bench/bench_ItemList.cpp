// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/Dates.h"
#include "engine/feed/CachedFeed.h"
#include "platform/Literals.h"
#include "reading/ItemListView.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QDateTime>
#include <QScrollBar>

#include <chrono>
#include <random>

namespace {

using Seconds = std::chrono::duration<double>;

constexpr int mostItems = 32767;

QApplication &application()
{
    static int count = 1;
    static char name[] = "bench";
    static char *arguments[] = {name, nullptr};
    static auto *const instance = new QApplication(count, arguments); // it outlives what the benchmarks leave behind
    return *instance;
}

/// A feed with items in no order of title or date, each with all that the list shows.
QByteArray feedText(int items)
{
    std::mt19937 numbers(7);
    const QDateTime start(QDate(2004, 1, 1), QTime(0, 0), Qt::UTC);
    QByteArray text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?><rss version=\"2.0\"><channel><title>T</title>";
    for (int i = 0; i < items; ++i) {
        const QDateTime date = start.addSecs(numbers() % 100000000);
        text += "<item><title>Élément " + QByteArray::number(static_cast<quint32>(numbers())) +
                " d'un titre de longueur ordinaire</title><author>Auteur " + QByteArray::number(i % 50) +
                "</author><category>Monde</category><pubDate>" + date.toString(Qt::RFC2822Date).toLatin1() +
                "</pubDate><description>Un texte de quelques mots, et &lt;b&gt;gras&lt;/b&gt;.</description></item>\n";
    }
    return text + "</channel></rss>\n";
}

struct FilledFeed
{
    explicit FilledFeed(int items)
    {
        application();
        folder.write(u"feed.xml"_s, feedText(items));
        load();
    }
    bool load() { return feed.Load(folder.file(u"feed.xml"_s)) == LoadOk; }

    TemporaryDataDirectory folder;
    CachedFeed feed;
};

/// `fill_to_load` is the time of filling the list as a part of the time of loading the feed; the floor is 1.
void fillAllRows(benchmark::State &state)
{
    FilledFeed source(mostItems);
    const Dates dates;
    ItemListModel model{dates};
    double loading = 0;
    double filling = 0;
    for (auto _ : state) {
        const auto begin = std::chrono::steady_clock::now();
        if (!source.load())
            state.SkipWithError("the file doesn't load");
        const auto loaded = std::chrono::steady_clock::now();
        model.fill(source.feed);
        const Seconds filled = std::chrono::steady_clock::now() - loaded;
        loading += Seconds(loaded - begin).count();
        filling += filled.count();
        state.SetIterationTime(filled.count());
    }
    state.counters["load_ms"] = 1000 * loading / static_cast<double>(state.iterations());
    state.counters["fill_to_load"] = filling / loading;
}

void sortAllRows(benchmark::State &state, ItemColumn column)
{
    FilledFeed source(mostItems);
    const Dates dates;
    ItemListModel model{dates};
    Qt::SortOrder order = Qt::AscendingOrder;
    model.fill(source.feed);
    for (auto _ : state) {
        model.sort(static_cast<int>(column), order);
        order = order == Qt::AscendingOrder ? Qt::DescendingOrder : Qt::AscendingOrder;
    }
}

/// Both must cost the same whatever the number of rows, which is the argument.
class ShownList : public benchmark::Fixture
{
public:
    void SetUp(const benchmark::State &state) override
    {
        FilledFeed source(static_cast<int>(state.range(0)));
        list = std::make_unique<ItemListView>(dates, ScreenScale{});
        for (int column = 1; column <= itemColumnCount; ++column)
            list->setColumnWidthTwips(column, 1500);
        list->resize(800, 400);
        list->items().fill(source.feed);
        list->show();
        list->grab();
    }
    void TearDown(const benchmark::State &) override { list.reset(); }

protected:
    const Dates dates;
    std::unique_ptr<ItemListView> list;
};

BENCHMARK_DEFINE_F(ShownList, scrollAPage)(benchmark::State &state)
{
    QScrollBar *bar = list->verticalScrollBar();
    for (auto _ : state) {
        bar->setValue(bar->value() + bar->pageStep() > bar->maximum() ? 0 : bar->value() + bar->pageStep());
        benchmark::DoNotOptimize(list->viewport()->grab());
    }
}

BENCHMARK_DEFINE_F(ShownList, markARow)(benchmark::State &state)
{
    bool read = false;
    for (auto _ : state) {
        read = !read;
        list->items().setRead(0, read);
        QApplication::processEvents();
    }
}

} // namespace

BENCHMARK(fillAllRows)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(sortAllRows, title, ItemColumn::Title)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(sortAllRows, published, ItemColumn::PubDate)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(sortAllRows, downloaded, ItemColumn::DownloadDate)->Unit(benchmark::kMillisecond);
BENCHMARK_REGISTER_F(ShownList, scrollAPage)->Arg(100)->Arg(mostItems)->Unit(benchmark::kMicrosecond);
BENCHMARK_REGISTER_F(ShownList, markARow)->Arg(100)->Arg(mostItems)->Unit(benchmark::kMicrosecond);

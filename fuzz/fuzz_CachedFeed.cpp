// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/CachedFeed.h"
#include "platform/DateText.h"
#include "platform/Files.h"
#include "platform/Literals.h"

#include <QTemporaryDir>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>
#include <vector>

namespace {

void require(bool holds)
{
    if (!holds)
        std::abort();
}

/// A document of each format, as a place for the items of the document at hand.
const QByteArray stores[] = {
    "<rss version='0.91'><channel><item><title>old</title></item></channel></rss>",
    "<?xml version='1.0' encoding='ISO-8859-1'?><rss version='0.92' xmlns='http://backend.userland.com/rss092' "
    "xmlns:dc='urn:x'><channel/></rss>",
    "<rss version='2.0' xmlns:dc='http://purl.org/dc/elements/1.1/' "
    "xmlns:content='http://purl.org/rss/1.0/modules/content/' xmlns:a='urn:a?b&amp;c'><channel/></rss>",
    "<rss version='2.0' xmlns:quillwire='urn:quillwire:marks' xmlns:dc='http://purl.org/dc/elements/1.1/' "
    "xmlns:content='http://purl.org/rss/1.0/modules/content/' xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#' "
    "xmlns:a='urn:u' xmlns:b='urn:u'><channel><item quillwire:downloaded='2004-07-01T12:00:00Z' quillwire:read='1'>"
    "<title>old</title></item></channel></rss>",
    "<rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#' xmlns='http://purl.org/rss/1.0/' "
    "xmlns:quillwire='urn:quillwire:marks' "
    "xmlns:dc='http://purl.org/dc/elements/1.1/'><channel><items><rdf:Seq/></items>"
    "</channel><item rdf:about='urn:x' quillwire:deleted='1'><title>old</title></item></rdf:RDF>",
    "<r:RDF xmlns:r='http://www.w3.org/1999/02/22-rdf-syntax-ns#' xmlns='http://purl.org/rss/1.0/'><channel/></r:RDF>",
    "<feed version='0.3' xmlns='http://purl.org/atom/ns#'/>"};

/// Likewise, of those formats that are read only with all rules.
const QByteArray furtherStores[] = {
    "<feed xmlns='http://www.w3.org/2005/Atom' xml:base='http://e.example/a/'><entry xml:base='b/'><title>old</title>"
    "<link href='c'/></entry></feed>",
    "<r:RDF xmlns:r='http://www.w3.org/1999/02/22-rdf-syntax-ns#' xmlns='http://my.netscape.com/rdf/simple/0.9/'>"
    "<channel/></r:RDF>",
    "<Channel xmlns='http://purl.org/net/rss1.1#'><items/></Channel>",
    "{\"version\":\"https://jsonfeed.org/version/1.1\",\"items\":[{\"title\":\"old\"}]}"};

QString write(const QString &name, const QByteArray &bytes)
{
    static const QTemporaryDir folder(u"/dev/shm/quillwire-XXXXXX"_s);
    const QString path = folder.filePath(name);
    Files::write(path, bytes);
    return path;
}

void readEveryField(const CachedFeed &feed)
{
    feed.HasDc();
    feed.HasContent();
    feed.Title();
    feed.Link();
    feed.Description();
    feed.Language();
    feed.Copyright();
    feed.ManagingEditor();
    feed.WebMaster();
    feed.Ttl();
    FeedImage image;
    feed.GetImage(image);
    for (int i = -1; i <= std::min<int>(feed.ItemCount(), 50); ++i) {
        const auto index = static_cast<qint16>(i);
        ItemSource source;
        ItemEnclosure enclosure;
        feed.ItemTitle(index);
        feed.ItemLink(index);
        feed.ItemDescription(index);
        feed.GetItemSource(index, source);
        feed.GetItemEnclosure(index, enclosure);
        feed.ItemCategory(index);
        feed.ItemAuthor(index);
        feed.ItemComments(index);
        feed.ItemPubDate(index);
        feed.IsItemRead(index);
        require(index < 0 || index >= feed.ItemCount() || DateText::isDate(feed.ItemDownloadDate(index)));
    }
}

/// Saves `feed` and loads it again; titles and marks must be what they were.
void requireTheSameAfterSaving(CachedFeed &feed, const QString &path)
{
    const qint16 count = feed.ItemCount();
    std::vector<QString> titles;
    for (qint16 i = 0; i < count; ++i)
        titles.push_back(feed.ItemTitle(i));
    const bool firstIsRead = feed.IsItemRead(0);
    const bool lastIsDeleted = feed.IsItemDeleted(static_cast<qint16>(count - 1));
    feed.Save();
    CachedFeed strict({}, {.formats = allFormats()}); // whatever was mended is sound now
    require(strict.Load(path) == LoadOk);
    require(feed.Load(path) == LoadOk);
    require(feed.ItemCount() == count);
    for (qint16 i = 0; i < count; ++i)
        require(feed.ItemTitle(i) == titles[static_cast<std::size_t>(i)]);
    require(feed.IsItemRead(0) == firstIsRead);
    require(feed.IsItemDeleted(static_cast<qint16>(count - 1)) == lastIsDeleted);
}

/// What loads is read, marked, carried over into a document of each of `places`, one after the other, and says the same
/// after it was saved and loaded.
void check(const QByteArray &bytes, const FeedRules &rules, std::span<const QByteArray> places)
{
    const Clock clock = [] { return QDateTime(QDate(2004, 7, 1), QTime(12, 0)); };
    std::vector<std::unique_ptr<CachedFeed>> feeds;
    QString path;
    for (const QByteArray &part : bytes.split('\0').first(std::min<qsizetype>(3, bytes.count('\0') + 1))) {
        auto feed = std::make_unique<CachedFeed>(clock, rules);
        const QString its = write(u"feed%1.xml"_s.arg(feeds.size()), part);
        if (feed->Load(its) != LoadOk)
            continue;
        path = its;
        readEveryField(*feed);
        feeds.push_back(std::move(feed));
    }
    if (feeds.empty())
        return;
    for (const QByteArray &storeBytes : places) {
        const QString storePath = write(u"store.xml"_s, storeBytes);
        CachedFeed store(clock, rules);
        require(store.Load(storePath) == LoadOk);
        for (const std::unique_ptr<CachedFeed> &from : feeds) {
            const qint16 count = std::min<qint16>(from->ItemCount(), 20);
            qint16 taken = 0;
            for (qint16 i = 0; i < count; ++i) {
                if (!store.AddItem(from->GetItemNode(i)))
                    continue;
                require(store.ItemTitle(taken) == from->ItemTitle(i));
                require(!store.IsItemRead(taken) && !store.IsItemDeleted(taken));
                ++taken;
            }
            requireTheSameAfterSaving(store, storePath);
        }
        readEveryField(store);
    }
    CachedFeed &feed = *feeds.back();
    feed.SetItemRead(0, true);
    feed.DeleteItem(static_cast<qint16>(feed.ItemCount() - 1));
    requireTheSameAfterSaving(feed, path);
    feed.AddItem(feed.GetItemNode(static_cast<qint16>(feed.ItemCount() - 1)));
    requireTheSameAfterSaving(feed, path);
    const qint16 before = feed.ItemCount();
    feed.RemoveItem(1);
    feed.Save();
    require(feed.ItemCount() == (before > 1 ? before - 1 : before));
}

} // namespace

/// Up to three documents with a zero byte between, by the usual rules and by all.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    check(bytes, {}, stores);
    check(bytes, {allFormats(), mendingReading(), wholeAddresses()}, furtherStores);
    return 0;
}

#include "engine/ItemStore.h"

#include "platform/DateText.h"
#include "platform/Numbers.h"

#include <QHash>
#include <QSet>

#include <limits>

namespace {

/// Adds the items of `fresh` whose titles `store` doesn't hold at that moment.
qint16 addNewItems(const CachedFeed &fresh, CachedFeed &store)
{
    // Each title with the lowest index of an item that bears it. An addition moves all of them up by one, and what
    // moves past the last index that the document offers is no longer seen.
    QHash<QString, qint32> stored;
    const qint16 storedCount = store.ItemCount();
    stored.reserve(storedCount);
    for (qint16 i = 0; i < storedCount; ++i) {
        const QString title = store.ItemTitle(i);
        if (!stored.contains(title))
            stored.insert(title, i);
    }
    QSet<QString> added;
    qint16 count = 0;
    const qint16 freshCount = fresh.ItemCount();
    for (qint16 i = 0; i < freshCount; ++i) {
        const QString title = fresh.ItemTitle(i);
        const auto known = stored.constFind(title);
        const bool seen = known != stored.constEnd() && *known + count < std::numeric_limits<qint16>::max();
        if (seen || added.contains(title))
            continue;
        store.AddItem(fresh.GetItemNode(i));
        added.insert(title);
        ++count;
    }
    return count;
}

void markAgedItems(CachedFeed &store, qint16 days, QDate today)
{
    if (days < 0)
        return;
    const qint16 count = store.ItemCount();
    QString text; // items of one update share their date; reading it is the costly part
    qint64 age = 0;
    for (qint16 i = 0; i < count; ++i) {
        const QString downloaded = store.ItemDownloadDate(i);
        if (i == 0 || downloaded != text) {
            text = downloaded;
            age = DateText::fromText(text).date().daysTo(today);
        }
        if (age > days)
            store.DeleteItem(i);
    }
}

/// Takes out the deleted items that `fresh` no longer lists.
void clearTombstones(const CachedFeed &fresh, CachedFeed &store)
{
    QSet<QString> listed;
    const qint16 freshCount = fresh.ItemCount();
    listed.reserve(freshCount);
    for (qint16 i = 0; i < freshCount; ++i)
        listed.insert(fresh.ItemTitle(i));
    const qint16 count = store.ItemCount();
    for (qint16 i = 0; i < count; ++i)
        if (store.IsItemDeleted(i) && !listed.contains(store.ItemTitle(i)))
            store.RemoveItem(i);
}

} // namespace

bool ItemStore::ItemExists(qint16 index, const CachedFeed &source, const CachedFeed &target)
{
    const QString title = source.ItemTitle(index);
    const qint16 count = target.ItemCount();
    for (qint16 j = 0; j < count; ++j)
        if (target.ItemTitle(j) == title)
            return true;
    return false;
}

qint16 ItemStore::merge(const CachedFeed &fresh, CachedFeed &store, const QString &updatecache, QString &havecache,
                        QDate today)
{
    const qint16 count = addNewItems(fresh, store);
    if (havecache == u"0") {
        markAgedItems(store, Numbers::toInt16(updatecache), today);
        havecache = QStringLiteral("1");
    }
    clearTombstones(fresh, store);
    store.Save();
    return count;
}

// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/ItemStore.h"

#include "platform/DateText.h"
#include "platform/Literals.h"
#include "platform/Numbers.h"

#include <QHash>

#include <limits>

namespace {

/// What is known of a title that the fresh document lists.
struct ListedTitle
{
    qint32 storeIndex = -1; ///< the lowest index of an item of the store that bears it; -1 when there is none
    bool added = false;
};
using ListedTitles = QHash<QString, ListedTitle>;

ListedTitles listTitles(const CachedFeed &fresh, const CachedFeed &store)
{
    ListedTitles titles;
    const qint16 freshCount = fresh.ItemCount();
    titles.reserve(freshCount);
    for (qint16 i = 0; i < freshCount; ++i)
        titles.insert(fresh.ItemTitle(i), {});
    const qint16 storeCount = store.ItemCount();
    for (qint16 i = 0; i < storeCount; ++i) {
        const auto listed = titles.find(store.ItemTitle(i));
        if (listed != titles.end() && listed->storeIndex < 0)
            listed->storeIndex = i;
    }
    return titles;
}

/// Adds the items of `fresh` whose titles `store` doesn't hold at that moment.
qint16 addNewItems(const CachedFeed &fresh, CachedFeed &store, ListedTitles &titles)
{
    qint16 count = 0;
    const qint16 freshCount = fresh.ItemCount();
    for (qint16 i = 0; i < freshCount; ++i) {
        ListedTitle &title = titles[fresh.ItemTitle(i)];
        // An addition moves the items of the store up by one; what moves past the last index is no longer seen.
        const bool stored = title.storeIndex >= 0 && title.storeIndex + count < std::numeric_limits<qint16>::max();
        if (stored || title.added || !store.AddItem(fresh.GetItemNode(i)))
            continue;
        title.added = true;
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

/// Takes out the deleted items that the fresh document no longer lists.
void clearTombstones(CachedFeed &store, const ListedTitles &titles)
{
    const qint16 count = store.ItemCount();
    for (qint16 i = 0; i < count; ++i)
        if (store.IsItemDeleted(i) && !titles.contains(store.ItemTitle(i)))
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
    ListedTitles titles = listTitles(fresh, store);
    const qint16 count = addNewItems(fresh, store, titles);
    if (havecache == u"0") {
        markAgedItems(store, Numbers::toInt16(updatecache), today);
        havecache = u"1"_s;
    }
    clearTombstones(store, titles);
    return count;
}

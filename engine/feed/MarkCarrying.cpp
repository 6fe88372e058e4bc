// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/MarkCarrying.h"

#include "engine/feed/FeedDocument.h"
#include "engine/feed/ItemMarks.h"

#include <QHash>

#include <algorithm>

namespace {

/// The indices of the items that aren't deleted, or only since the document was loaded or saved, by their titles.
QHash<QString, std::vector<qsizetype>> itemsByTitle(const FeedDocument &document)
{
    QHash<QString, std::vector<qsizetype>> items;
    for (qsizetype i = 0; i < document.itemCount(); ++i)
        if (!ItemMarks::isDeleted(document.item(i)) || document.markChanges(i).deleted)
            items[document.reader().text(ItemField::Title, document.itemElements(i))].push_back(i);
    return items;
}

void carryItem(const FeedDocument &older, qsizetype from, FeedDocument &newer, qsizetype to)
{
    const FeedDocument::MarkChanges changes = older.markChanges(from);
    if (ItemMarks::downloadMark(newer.item(to)).empty())
        return;
    if (changes.read)
        newer.setRead(to, ItemMarks::isRead(older.item(from)));
    if (changes.deleted)
        newer.setDeleted(to);
}

} // namespace

bool MarkCarrying::carry(const FeedDocument &older, FeedDocument &newer)
{
    const auto olderItems = itemsByTitle(older);
    const auto newerItems = itemsByTitle(newer);
    for (auto title = olderItems.cbegin(); title != olderItems.cend(); ++title) {
        const std::vector<qsizetype> namesakes = newerItems.value(title.key());
        const std::size_t count = std::min(title->size(), namesakes.size());
        for (std::size_t n = 0; n < count; ++n)
            carryItem(older, title->at(n), newer, namesakes[n]);
    }
    return newer.marksChanged();
}

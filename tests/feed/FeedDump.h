// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/feed/CachedFeed.h"
#include "platform/DateText.h"
#include "platform/Literals.h"

#include <QByteArray>
#include <QStringList>

/// Everything that a feed says, a line a field. Fields that are "" or missing leave no line.
namespace FeedDump {

inline void add(QStringList &lines, const char *field, const QString &text)
{
    if (!text.isEmpty())
        lines += QLatin1String(field) + ": "_L1 + QString(text).replace(u'\n', "\\n"_L1);
}

inline QString extensions(const CachedFeed &feed)
{
    QStringList used;
    if (feed.HasContent())
        used += u"content"_s;
    if (feed.HasWfw())
        used += u"wfw"_s;
    if (feed.HasDc())
        used += u"dc"_s;
    if (feed.HasItunes())
        used += u"itunes"_s;
    return used.join(u' ');
}

inline void addItem(QStringList &lines, const CachedFeed &feed, qint16 index)
{
    add(lines, "Title", feed.ItemTitle(index));
    add(lines, "Link", feed.ItemLink(index));
    add(lines, "Description", feed.ItemDescription(index));
    if (ItemSource source; feed.GetItemSource(index, source))
        add(lines, "Source", source.Name + ", "_L1 + source.Url);
    if (ItemEnclosure enclosure; feed.GetItemEnclosure(index, enclosure))
        add(lines, "Enclosure",
            enclosure.Url + ", "_L1 + enclosure.Extra + ", "_L1 + QString::number(enclosure.Length));
    add(lines, "Category", feed.ItemCategory(index));
    add(lines, "Author", feed.ItemAuthor(index));
    add(lines, "Comments", feed.ItemComments(index));
    add(lines, "PubDate", feed.ItemPubDate(index));
}

inline QStringList item(const CachedFeed &feed, qint16 index)
{
    QStringList lines;
    addItem(lines, feed, index);
    return lines;
}

inline QStringList channel(const CachedFeed &feed)
{
    QStringList lines;
    add(lines, "Version", QString::number(feed.Version()));
    add(lines, "Has", extensions(feed));
    add(lines, "Title", feed.Title());
    add(lines, "Link", feed.Link());
    add(lines, "Description", feed.Description());
    add(lines, "Language", feed.Language());
    add(lines, "Copyright", feed.Copyright());
    add(lines, "ManagingEditor", feed.ManagingEditor());
    add(lines, "WebMaster", feed.WebMaster());
    add(lines, "Ttl", feed.Ttl());
    if (FeedImage image; feed.GetImage(image))
        add(lines, "Image",
            QStringList{image.Url, image.Title, image.Link, QString::number(image.Width), QString::number(image.Height),
                        image.Description}
                .join(", "_L1));
    return lines;
}

inline QStringList all(const CachedFeed &feed)
{
    QStringList lines = channel(feed);
    add(lines, "Items", QString::number(feed.ItemCount()));
    for (qint16 index = 0; index < feed.ItemCount(); ++index) {
        add(lines, "Item", QString::number(index));
        addItem(lines, feed, index);
    }
    return lines;
}

/// Of each item its title and its marks.
inline QString marks(const CachedFeed &feed)
{
    QStringList items;
    for (qint16 i = 0; i < feed.ItemCount(); ++i)
        items += feed.ItemTitle(i) + (feed.IsItemRead(i) ? " read"_L1 : ""_L1) +
                 (feed.IsItemDeleted(i) ? " deleted "_L1 : " "_L1) +
                 DateText::fromText(feed.ItemDownloadDate(i)).toUTC().toString(Qt::ISODate);
    return items.join(", "_L1);
}

} // namespace FeedDump

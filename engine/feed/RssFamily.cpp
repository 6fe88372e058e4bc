// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/RssFamily.h"

#include "engine/feed/ElementText.h"

#include <algorithm>

bool RssFamily::isOwn(std::string_view name)
{
    constexpr std::string_view exact[] = {NamespaceName::rss10, "http://purl.org/rss/2.0/",
                                          "http://my.netscape.com/publish/formats/rss-0.91.dtd"};
    constexpr std::string_view beginnings[] = {"http://backend.userland.com/rss", "http://backend.userland.com/RSS",
                                               "http://blogs.law.harvard.edu/tech/rss",
                                               "http://cyber.law.harvard.edu/rss", "http://www.rssboard.org/rss"};
    return name.empty() || isRss090(name) || std::find(std::begin(exact), std::end(exact), name) != std::end(exact) ||
           std::any_of(std::begin(beginnings), std::end(beginnings),
                       [&](std::string_view beginning) { return name.starts_with(beginning); });
}

FeedLoadResult RssFamily::recognise(const xmlNode *root, std::string_view version)
{
    if (viewOf(root->name) != "rss" || !isOwn(nameOf(root->ns)))
        return LoadUnknownFormat;
    return attributeOf(root, "version").toStdString() == version ? LoadOk : LoadBadVersion;
}

void RssFamily::addDate(ItemWriter &item, const QString &date)
{
    const bool beginsWithYear =
        date.size() >= 4 && std::all_of(date.begin(), date.begin() + 4, [](QChar c) { return c >= u'0' && c <= u'9'; });
    if (beginsWithYear)
        item.addDc("date", date);
    else
        item.add("pubDate", date);
}

void RssFamily::addSourceAndEnclosure(ItemWriter &item, const ItemContent &content)
{
    if (content.source) {
        xmlNode *source = item.addElement("source", content.source->Name);
        ItemWriter::setAttribute(source, "url", content.source->Url);
    }
    if (content.enclosure) {
        xmlNode *enclosure = item.addElement("enclosure");
        ItemWriter::setAttribute(enclosure, "url", content.enclosure->Url);
        ItemWriter::setAttribute(enclosure, "length", QString::number(content.enclosure->Length));
        ItemWriter::setAttribute(enclosure, "type", content.enclosure->Extra);
    }
}

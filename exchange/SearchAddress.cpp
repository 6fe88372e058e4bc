// SPDX-License-Identifier: GPL-3.0-or-later

#include "exchange/SearchAddress.h"

#include "platform/Literals.h"

namespace {

QString withoutBlanks(QString address)
{
    return address.replace(QLatin1Char(' '), QLatin1Char('+'));
}

} // namespace

QString SearchAddress::feedster(const SearchEndpoints &endpoints, const FeedsterQuery &query)
{
    return withoutBlanks(endpoints.feedster + u"search.php?hl=en&ie=UTF-8&q="_s + query.words +
                         (query.byDate ? u"&sort=date"_s : u"&sort=relevance"_s) +
                         (query.blogsOnly ? u"&category=blog"_s : QString()) + u"&content=full&type=rss&limit="_s +
                         query.count);
}

QString SearchAddress::dayPop(const SearchEndpoints &endpoints, const DayPopQuery &query)
{
    return withoutBlanks(endpoints.dayPop + u"search?q="_s + query.words +
                         (query.byDate ? u"&sort=date"_s : QString()) + (query.titlesOnly ? u"&ts=true"_s : QString()) +
                         u"&t="_s + query.kind + (query.language.isEmpty() ? QString() : u"&ln="_s + query.language) +
                         u"&o=rss&c="_s + query.count);
}

QString SearchAddress::web(const SearchEndpoints &endpoints, WebService service, const QString &words)
{
    switch (service) {
    case WebService::Syndic8:
        return withoutBlanks(endpoints.syndic8 + u"feedlist.php?ShowStatus=all&ShowMatch="_s + words);
    case WebService::Newsisfree:
        return withoutBlanks(endpoints.newsisfree + u"siets/?type=search&search=Search&query="_s + words);
    case WebService::BlogStreet:
        break;
    }
    return withoutBlanks(endpoints.blogStreet + u"bin/rsssearch.cgi?x=0&y=0&period=0&q="_s + words);
}

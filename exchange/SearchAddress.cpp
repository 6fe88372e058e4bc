#include "exchange/SearchAddress.h"

namespace {

QString withoutBlanks(QString address)
{
    return address.replace(QLatin1Char(' '), QLatin1Char('+'));
}

} // namespace

QString SearchAddress::feedster(const SearchEndpoints &endpoints, const FeedsterQuery &query)
{
    return withoutBlanks(endpoints.feedster + QStringLiteral("search.php?hl=en&ie=UTF-8&q=") + query.words +
                         (query.byDate ? QStringLiteral("&sort=date") : QStringLiteral("&sort=relevance")) +
                         (query.blogsOnly ? QStringLiteral("&category=blog") : QString()) +
                         QStringLiteral("&content=full&type=rss&limit=") + query.count);
}

QString SearchAddress::dayPop(const SearchEndpoints &endpoints, const DayPopQuery &query)
{
    return withoutBlanks(endpoints.dayPop + QStringLiteral("search?q=") + query.words +
                         (query.byDate ? QStringLiteral("&sort=date") : QString()) +
                         (query.titlesOnly ? QStringLiteral("&ts=true") : QString()) + QStringLiteral("&t=") +
                         query.kind + (query.language.isEmpty() ? QString() : QStringLiteral("&ln=") + query.language) +
                         QStringLiteral("&o=rss&c=") + query.count);
}

QString SearchAddress::web(const SearchEndpoints &endpoints, WebService service, const QString &words)
{
    switch (service) {
    case WebService::Syndic8:
        return withoutBlanks(endpoints.syndic8 + QStringLiteral("feedlist.php?ShowStatus=all&ShowMatch=") + words);
    case WebService::Newsisfree:
        return withoutBlanks(endpoints.newsisfree + QStringLiteral("siets/?type=search&search=Search&query=") + words);
    case WebService::BlogStreet:
        break;
    }
    return withoutBlanks(endpoints.blogStreet + QStringLiteral("bin/rsssearch.cgi?x=0&y=0&period=0&q=") + words);
}

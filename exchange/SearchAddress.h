// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "exchange/SearchEndpoints.h"

#include <QString>

/// The addresses that search the services. All parts are joined as they are: every blank becomes "+", nothing else is
/// encoded, so that an "&" in the words begins a parameter of its own.
namespace SearchAddress {

struct FeedsterQuery
{
    QString words;
    bool byDate = true; ///< else by relevance
    bool blogsOnly = false;
    QString count; ///< results wanted, as typed
};

struct DayPopQuery
{
    QString words;
    bool byDate = true;
    bool titlesOnly = false;
    QString kind;     ///< "a" feeds and blogs, "n" feeds, "w" blogs
    QString language; ///< two letters; "" stands for all languages
    QString count;    ///< results wanted, as typed
};

/// The services that answer with a page.
enum class WebService { Syndic8, Newsisfree, BlogStreet };

/// The first two answer with a feed.
QString feedster(const SearchEndpoints &endpoints, const FeedsterQuery &query);
QString dayPop(const SearchEndpoints &endpoints, const DayPopQuery &query);
QString web(const SearchEndpoints &endpoints, WebService service, const QString &words);

} // namespace SearchAddress

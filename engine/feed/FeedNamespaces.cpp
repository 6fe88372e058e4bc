// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/FeedNamespaces.h"

#include <QByteArray>

bool isDublinCore(std::string_view name)
{
    return name == NamespaceName::dc || name == "http://purl.org/dc/elements/1.0/";
}

bool isContentModule(std::string_view name)
{
    return name == "http://purl.org/rss/1.0/modules/content/";
}

bool isCommentApi(std::string_view name)
{
    return name == "http://wellformedweb.org/CommentAPI/";
}

bool isItunes(std::string_view name)
{
    // Feeds write this address in several ways: "DTDs/Podcast", "dtds/podcast".
    constexpr std::string_view wanted = "http://www.itunes.com/dtds/podcast-1.0.dtd";
    return name.size() == wanted.size() && qstrnicmp(name.data(), wanted.data(), wanted.size()) == 0;
}

bool isRss090(std::string_view name)
{
    return name == "http://my.netscape.com/rdf/simple/0.9/" || name == "http://channel.netscape.com/rdf/simple/0.9/";
}

// SPDX-License-Identifier: GPL-3.0-or-later

#include "reading/web/Addresses.h"

#include "platform/AddressScheme.h"
#include "platform/Literals.h"
#include "reading/web/PaneScheme.h"

using AddressScheme::Use;
using AddressScheme::useOf;

namespace {

bool isBlank(const QUrl &url)
{
    return url == QUrl(u"about:blank"_s) || url == QUrl(u"about:srcdoc"_s);
}

} // namespace

bool Addresses::isWeb(const QUrl &url)
{
    return useOf(url.scheme()) == Use::Pane;
}

bool Addresses::canShow(const QUrl &url)
{
    return isWeb(url) || url.isLocalFile() || PaneScheme::isServed(url);
}

bool Addresses::belongsToSystem(const QUrl &url)
{
    return useOf(url.scheme()) == Use::System;
}

bool Addresses::isOfFeed(const QUrl &url)
{
    return useOf(url.scheme()) == Use::Feed;
}

bool Addresses::endsLikeFeed(const QUrl &url)
{
    const QString ending = url.toString(QUrl::FullyEncoded).right(4);
    return ending == ".rdf"_L1 || ending == ".xml"_L1 || ending == ".rss"_L1;
}

bool Addresses::isMadeByPages(const QUrl &url, bool isMainFrame)
{
    return isBlank(url) || url.scheme() == "blob"_L1 || (url.scheme() == "data"_L1 && !isMainFrame);
}

bool Addresses::mayOpenWindow(const QUrl &url)
{
    return url.isEmpty() || isWeb(url) || isMadeByPages(url, true) || belongsToSystem(url);
}

bool Addresses::maySave(const QUrl &url)
{
    return isWeb(url) || isMadeByPages(url, false);
}

bool Addresses::mayRequest(const QUrl &url, bool isMainFrame)
{
    const QString scheme = url.scheme();
    return isWeb(url) || scheme == "ws"_L1 || scheme == "wss"_L1 || isMadeByPages(url, false) ||
           PaneScheme::owns(url) || (isMainFrame && url.isLocalFile());
}

bool Addresses::runsScripts(const QUrl &url)
{
    return !PaneScheme::owns(url) && !url.isLocalFile();
}

// SPDX-License-Identifier: GPL-3.0-or-later

#include "reading/web/Addresses.h"

#include "platform/Literals.h"
#include "reading/web/PaneScheme.h"

#include <QSet>

namespace {

bool isBlank(const QUrl &url)
{
    return url == QUrl(u"about:blank"_s) || url == QUrl(u"about:srcdoc"_s);
}

} // namespace

bool Addresses::isWeb(const QUrl &url)
{
    return url.scheme() == "http"_L1 || url.scheme() == "https"_L1;
}

bool Addresses::canShow(const QUrl &url)
{
    return isWeb(url) || url.isLocalFile() || PaneScheme::isServed(url);
}

bool Addresses::belongsToSystem(const QUrl &url)
{
    static const QSet<QString> schemes = {u"mailto"_s, u"news"_s, u"nntp"_s,   u"ftp"_s,    u"ftps"_s, u"tel"_s,
                                          u"callto"_s, u"sip"_s,  u"sips"_s,   u"sms"_s,    u"xmpp"_s, u"irc"_s,
                                          u"ircs"_s,   u"feed"_s, u"magnet"_s, u"webcal"_s, u"geo"_s};
    return schemes.contains(url.scheme());
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

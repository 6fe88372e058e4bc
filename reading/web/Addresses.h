// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QUrl>

/// What an address may be used for in the browser pane, by its scheme. Nothing that is local (a file, a resource of the
/// program or of the engine, the source of a page) is in any list but the first.
namespace Addresses {

/// True for http and https.
bool isWeb(const QUrl &url);

/// True for what a navigation of the program may go to: http, https, a local file, one of our own pages.
bool canShow(const QUrl &url);

/// True for a scheme that another program of the system takes (mailto and the like).
bool belongsToSystem(const QUrl &url);

/// True for the address of a feed by its scheme, which the pane can't go to.
bool isOfFeed(const QUrl &url);

/// True for an address that ends as files of feeds do, whatever its scheme. Capitals and a query behind the name are
/// no match.
bool endsLikeFeed(const QUrl &url);

/// True for what scripts of the web make: empty pages and pages of their own. A frame may hold a text of its own too.
bool isMadeByPages(const QUrl &url, bool isMainFrame);

/// True for what a window may be opened with.
bool mayOpenWindow(const QUrl &url);

/// True for what may be saved as a file: what comes from the web, and what a page made itself.
bool maySave(const QUrl &url);

/// True for what may be loaded at all, as a page or into one. Where a page may go is a matter of the page, and which of
/// our own files it sees one of the private scheme.
bool mayRequest(const QUrl &url, bool isMainFrame);

/// True for a page whose scripts run: not for one of ours, nor for a local file.
bool runsScripts(const QUrl &url);

} // namespace Addresses

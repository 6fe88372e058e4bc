// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "reading/WebPane.h"

#include <QUrl>
#include <QWebEngineUrlSchemeHandler>

class PageColours;

/// The private scheme under which the browser pane sees the data directory. It serves tmp.htm, home.htm, style.css and
/// slien.gif by exactly these names and nothing else, and only to pages of its own.
///
/// tmp.htm is served without its zero bytes, as text of the ANSI code page. Both pages are served with a policy that
/// forbids scripts, plug-ins, styles but the one sheet, and other frames than those of the web, whatever markup a feed
/// has put into them, and with a link to the rule of the colours, which style.css may overrule: it is what style.css
/// is with any query.
class PaneScheme final : public QWebEngineUrlSchemeHandler
{
    Q_OBJECT

public:
    /// `colours` outlives the object.
    PaneScheme(WebPane::Folder folder, const PageColours &colours, QObject *parent = nullptr);

    /// Tells the engine of the scheme; before its first profile is made.
    static void registerScheme();

    static QByteArray name();

    /// True for any address of the scheme.
    static bool owns(const QUrl &url);

    /// True for the address of one of the four files.
    static bool isServed(const QUrl &url);

    static QUrl startPage();

    /// True for the link "extensions" of our pages, behind which nothing is served.
    static bool leadsToExtensions(const QUrl &url);

    /// The scheme's address of the file at `path` (a path or a `file:` address); an invalid one when it isn't served.
    QUrl addressOf(const QString &path) const;

    /// The `file:` address of what stands behind an address of the scheme; other addresses as they are.
    QUrl fileAddressOf(const QUrl &url) const;

    void requestStarted(QWebEngineUrlRequestJob *job) override;

private:
    QByteArray guardedPage(const QByteArray &page) const;
    QString pathOf(const QString &file) const;

    WebPane::Folder m_folder;
    const PageColours &m_colours;
};

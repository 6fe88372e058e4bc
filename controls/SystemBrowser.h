// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QUrl>

#include <functional>

/// Hands addresses to the system's browser.
class SystemBrowser
{
public:
    /// Opens an address; whether that worked. Tests put their own in.
    using Opener = std::function<bool(const QUrl &url)>;

    /// `pagesFolder` is the folder of the program's own pages. Without an opener the desktop's is used.
    explicit SystemBrowser(const QString &pagesFolder, Opener opener = {});

    /// Opens `url` if AddressScheme knows its scheme, or if it is one of the program's own pages ("home.htm",
    /// "tmp.htm"); anything else (another file, a script, a program) is refused. An address that begins with "www."
    /// counts as one of the web; of one of mail only the fields that the user sees are kept, no attachment. Returns
    /// whether it was opened.
    bool openInSystemBrowser(const QString &url) const;

private:
    bool isAllowed(const QUrl &url) const;

    QString m_pagesFolder;
    Opener m_opener;
};

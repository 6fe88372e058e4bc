// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/SystemBrowser.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>

SystemBrowser::SystemBrowser(const QString &pagesFolder, Opener opener)
    : m_pagesFolder(pagesFolder), m_opener(std::move(opener))
{
    if (!m_opener)
        m_opener = [](const QUrl &url) { return QDesktopServices::openUrl(url); };
}

bool SystemBrowser::openInSystemBrowser(const QString &url) const
{
    QString address = url.trimmed();
    if (address.startsWith(u"www.", Qt::CaseInsensitive))
        address.prepend(u"http://");
    const QUrl parsed(address);
    return isAllowed(parsed) && m_opener(parsed);
}

bool SystemBrowser::isAllowed(const QUrl &url) const
{
    if (!url.isValid())
        return false;
    const QString scheme = url.scheme(); // in lower case
    if (scheme == u"http" || scheme == u"https" || scheme == u"ftp")
        return !url.host().isEmpty();
    if (scheme == u"mailto")
        return !url.path().isEmpty();
    if (!url.isLocalFile() || !url.host().isEmpty())
        return false;
    const QFileInfo page(url.toLocalFile());
    const QString name = page.fileName();
    return (name == u"home.htm" || name == u"tmp.htm") && QDir(page.path()) == QDir(m_pagesFolder);
}

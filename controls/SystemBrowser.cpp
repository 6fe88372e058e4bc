// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/SystemBrowser.h"

#include "platform/AddressScheme.h"
#include "platform/Literals.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QSet>
#include <QUrlQuery>

namespace {

/// Some mail programs attach the file that an address names; only what the user sees in the mail is kept of it.
QUrl withPlainFields(QUrl mail)
{
    static const QSet<QString> plain = {u"to"_s, u"cc"_s, u"bcc"_s, u"subject"_s, u"body"_s, u"in-reply-to"_s};
    QUrlQuery kept;
    const QList<QPair<QString, QString>> fields = QUrlQuery(mail).queryItems();
    for (const auto &[name, value] : fields) {
        if (plain.contains(name.toLower()))
            kept.addQueryItem(name, value);
    }
    mail.setQuery(kept.isEmpty() ? QString() : kept.query());
    return mail;
}

/// True unless the address is one of nothing: a server's without a server, a mail to nobody.
bool namesSomething(const QUrl &url)
{
    const QString scheme = url.scheme();
    if (scheme == u"http" || scheme == u"https" || scheme == u"ftp" || scheme == u"ftps")
        return !url.host().isEmpty();
    if (scheme == u"mailto")
        return !url.path().isEmpty();
    return !url.host().isEmpty() || !url.path().isEmpty() || url.hasQuery();
}

} // namespace

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
    return isAllowed(parsed) && m_opener(parsed.scheme() == u"mailto" ? withPlainFields(parsed) : parsed);
}

bool SystemBrowser::isAllowed(const QUrl &url) const
{
    if (!url.isValid())
        return false;
    if (AddressScheme::useOf(url.scheme()) != AddressScheme::Use::None)
        return namesSomething(url);
    if (!url.isLocalFile() || !url.host().isEmpty())
        return false;
    const QFileInfo page(url.toLocalFile());
    const QString name = page.fileName();
    return (name == u"home.htm" || name == u"tmp.htm") && QDir(page.path()) == QDir(m_pagesFolder);
}

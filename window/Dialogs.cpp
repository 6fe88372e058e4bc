#include "window/Dialogs.h"

#include "dialogs/CHelp.h"
#include "dialogs/frmAbout.h"
#include "dialogs/frmAuthentification.h"
#include "dialogs/frmExport.h"
#include "dialogs/frmImport.h"
#include "dialogs/frmProprietes.h"
#include "dialogs/frmRechercher.h"
#include "dialogs/frmSendMail.h"
#include "engine/CurrentFeed.h"
#include "exchange/OpmlDownload.h"
#include "exchange/SearchEndpoints.h"
#include "platform/net/Downloader.h"
#include "platform/net/SmtpMail.h"

Dialogs::Dialogs(Needs needs) : m_needs(std::move(needs)) {}

void Dialogs::showOptions()
{
    frmOptions(m_needs.frame, m_needs.settings, m_needs.runAtStartup).exec();
}

void Dialogs::showSearchDialog(int tab)
{
    const frmRechercher::Port port{
        m_needs.navigate, m_needs.setAddressText,
        [this](const QString &username, const QString &password) { setCredentials(username, password); },
        m_needs.LoadFile};
    const QString file = m_needs.directory.file(QStringLiteral("search-endpoints.ini"));
    frmRechercher(m_needs.frame, port, SearchEndpoints::configured(file), tab).exec();
}

void Dialogs::showImport()
{
    OpmlDownload download(m_needs.makeDownloader(), m_needs.directory.file(QStringLiteral("tmp.opml")));
    ImportRun run(m_needs.makeDownloader(), m_needs.directory.file(QStringLiteral("tmp.xml")), m_needs.wait,
                  m_needs.AddFeed);
    frmImport(m_needs.frame, m_needs.messages, download, run).exec();
}

void Dialogs::showExport()
{
    frmExport(m_needs.frame, m_needs.directory.file(QStringLiteral("feeds.xml"))).exec();
}

void Dialogs::showHelp()
{
    if (!m_help)
        m_help = m_needs.makeHelp();
    CHelp(*m_help).Show(m_needs.directory.file(QStringLiteral("Quillwire.chm")), QStringLiteral("W1"));
}

void Dialogs::showAbout()
{
    frmAbout(m_needs.frame, m_needs.openInSystemBrowser).exec();
}

void Dialogs::showFeedProperties()
{
    const CurrentFeed &current = m_needs.current;
    frmProprietes form(m_needs.frame, {current.document, current.addressFeedShown, m_needs.addressText(),
                                       m_needs.selectedNode, m_needs.tables, m_needs.cipher});
    if (form.fillFrom())
        form.exec();
}

void Dialogs::showMailDialog(const QString &text)
{
    const auto makeMail = [](std::function<void()> keepAlive) {
        return std::make_unique<SmtpMail>(std::move(keepAlive));
    };
    frmSendMail(m_needs.frame, m_needs.settings, m_needs.messages, text, m_needs.wait, makeMail).exec();
}

void Dialogs::showAuthentication()
{
    const auto credentials = [this](const QString &username, const QString &password) {
        setCredentials(username, password);
    };
    frmAuthentification(m_needs.frame, {credentials, m_needs.LoadFile}).exec();
}

void Dialogs::setCredentials(const QString &username, const QString &password)
{
    m_needs.current.strUsername = username;
    m_needs.current.strPassword = password;
}

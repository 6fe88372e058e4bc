#include "window/Dialogs.h"

#include "dialogs/CHelp.h"
#include "exchange/SearchEndpoints.h"
#include "dialogs/frmAbout.h"
#include "dialogs/frmAuthentification.h"
#include "dialogs/frmExport.h"
#include "dialogs/frmProprietes.h"
#include "dialogs/frmRechercher.h"
#include "dialogs/frmSendMail.h"

Dialogs::Dialogs(MainWindow &window, Outside outside) : m_window(window), m_outside(std::move(outside)) {}

void Dialogs::showOptions()
{
    frmOptions(m_window, m_outside.runAtStartup).exec();
}

void Dialogs::showSearchDialog(int tab)
{
    frmRechercher(m_window, SearchEndpoints::configured(m_outside.searchEndpointsFile), tab).exec();
}

void Dialogs::showImport()
{
    frmImport(m_window, m_outside.messages, m_outside.makeDownloader, m_outside.wait).exec();
}

void Dialogs::showExport()
{
    frmExport dialog(m_window);
    dialog.exec();
}

void Dialogs::showHelp()
{
    if (!m_help)
        m_help = m_outside.makeHelp();
    CHelp(*m_help).Show(m_outside.helpFile, QStringLiteral("W1"));
}

void Dialogs::showAbout()
{
    frmAbout dialog(m_window);
    dialog.exec();
}

void Dialogs::showFeedProperties()
{
    frmProprietes::showFeedProperties(m_window);
}

void Dialogs::showMailDialog(const QString &text)
{
    frmSendMail(m_window, m_outside.messages, text, m_outside.wait).exec();
}

void Dialogs::showAuthentication()
{
    frmAuthentification dialog(m_window);
    dialog.exec();
}

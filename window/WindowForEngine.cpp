#include "window/WindowForEngine.h"

#include "controls/ProgressBar.h"
#include "controls/StatusBar.h"
#include "controls/cToolbar.h"
#include "reading/BrowserPane.h"
#include "reading/ItemListView.h"
#include "reading/ReadingPane.h"
#include "window/AddressBand.h"
#include "window/MainToolbar.h"

QString WindowForEngine::addressText() const
{
    return m_p.fraToolbar.txtURL().text();
}

void WindowForEngine::setAddressText(const QString &text)
{
    m_p.fraToolbar.txtURL().setText(text);
}

void WindowForEngine::FillItemList()
{
    m_p.reading.FillItemList();
}

void WindowForEngine::emptyItemList()
{
    m_p.lvwItems.items().clear();
}

int WindowForEngine::selectedRow() const
{
    return m_p.lvwItems.selectedRow();
}

void WindowForEngine::selectRow(int position)
{
    m_p.lvwItems.selectRow(position);
}

void WindowForEngine::enableAddButton(bool enabled)
{
    m_p.cToolbar1.setButtonEnabled(MainToolbar::Ajouter, enabled);
}

void WindowForEngine::enableUpdateButton(bool enabled)
{
    m_p.cToolbar1.setButtonEnabled(MainToolbar::Actualiser, enabled);
}

void WindowForEngine::enableSendMailButton(bool enabled)
{
    m_p.tlbBrowser.setButtonEnabled(QStringLiteral("send_mail"), enabled);
}

void WindowForEngine::showProgress(bool visible)
{
    m_p.prbChargement.setVisible(visible);
}

void WindowForEngine::setProgress(int percent)
{
    m_p.prbChargement.setValue(percent);
}

void WindowForEngine::setStatusText(const QString &text)
{
    m_p.stabPrinc.setPanelText(QStringLiteral("state"), text);
}

void WindowForEngine::askForCredentials()
{
    m_p.showAuthentication();
}

void WindowForEngine::navigate(const QString &url)
{
    m_p.browser.Navigate(url);
}

void WindowForEngine::addMessageToQueue(const QString &title, qint16 count)
{
    m_p.announce(title, count);
}

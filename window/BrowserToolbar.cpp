// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/BrowserToolbar.h"

#include "controls/cPopupMenu.h"
#include "controls/cToolbar.h"
#include "engine/CurrentFeed.h"
#include "platform/Literals.h"
#include "platform/Numbers.h"
#include "reading/BrowserPane.h"
#include "reading/ReadingPane.h"
#include "window/MainToolbar.h"

namespace {

struct Button
{
    const char16_t *tip;
    const char16_t *caption;
    const char16_t *key;
    int image;
    cToolbar::ButtonStyle style;
    bool enabled;
};

constexpr Button separator = {u"", u"", u"", -1, cToolbar::Separator, true};

constexpr Button buttons[] = {
    {u"Précédent", u"Précédent", u"browser_precedent", 4, cToolbar::AutoSize, true},
    {u"Suivant", u"Suivant", u"browser_suivant", 5, cToolbar::AutoSize, true},
    {u"Actualiser", u"Actualiser", u"browser_actualiser", 0, cToolbar::AutoSize, true},
    {u"Arrêter", u"Arrêter", u"browser_arreter", 6, cToolbar::AutoSize, true},
    separator,
    {u"Ouvrir dans le navigateur du système", u"Ouvrir", u"browser_ouvrir", 7, cToolbar::AutoSize, true},
    {u"Envoyer la new par mail", u"Envoyer", u"send_mail", 10, cToolbar::AutoSize, false},
    separator,
    {u"Ajouter un commentaire", u"Commentaires", u"browser_comments", 8, cToolbar::AutoSize, false},
    {u"Pièce jointe", u"Pièce jointe", u"browser_attachment", 9, cToolbar::DropDownArrow, false},
};

const QString stopKey = u"browser_arreter"_s;

} // namespace

void BrowserToolbar::build(cToolbar &tlbBrowser, const AppSettings &settings)
{
    ToolbarLook::applySize(tlbBrowser, settings.smallToolbars);
    ToolbarLook::applyStyle(tlbBrowser, settings.officeStyle);
    for (const Button &button : buttons) {
        const QString key = QString::fromUtf16(button.key);
        tlbBrowser.AddButton(QString::fromUtf16(button.tip), button.image, QString::fromUtf16(button.caption),
                             button.style, key);
        if (!button.enabled)
            tlbBrowser.setButtonEnabled(key, false);
    }
}

BrowserToolbar::BrowserToolbar(Parts parts, QObject *parent) : QObject(parent), m_parts(std::move(parts))
{
    connect(&m_parts.tlbBrowser, &cToolbar::ButtonClick, this, &BrowserToolbar::handleButton);
    connect(&m_parts.tlbBrowser, &cToolbar::DropDownPress, this, &BrowserToolbar::handleDropDown);
    connect(&m_parts.mnuAttachment, &cPopupMenu::Click, this, &BrowserToolbar::handleAttachment);
    connect(&m_parts.browser, &BrowserPane::CommandStateChange, this, &BrowserToolbar::handleCommandState);
    connect(&m_parts.browser, &BrowserPane::DownloadBegin, this,
            [this] { m_parts.tlbBrowser.setButtonEnabled(stopKey, true); });
    connect(&m_parts.browser, &BrowserPane::DocumentComplete, this,
            [this] { m_parts.tlbBrowser.setButtonEnabled(stopKey, false); });
}

void BrowserToolbar::handleButton(int index)
{
    switch (index) {
    case 0:
        m_parts.browser.GoBack();
        break;
    case 1:
        m_parts.browser.GoForward();
        break;
    case 2:
        m_parts.browser.Refresh();
        break;
    case 3:
        m_parts.browser.Stop();
        m_parts.tlbBrowser.setButtonEnabled(stopKey, false);
        break;
    case 5:
        m_parts.openInSystemBrowser(m_parts.browser.LocationURL());
        break;
    case 6:
        m_parts.reading.sendItemByMail(static_cast<qint16>(m_parts.reading.selectedItem()));
        break;
    case 8:
        showComments(m_parts.current.document->ItemComments(static_cast<qint16>(m_parts.reading.selectedItem())));
        break;
    default: // the body of "browser_attachment" does nothing, only its arrow acts
        break;
    }
}

void BrowserToolbar::showComments(const QString &url)
{
    // A feed names this address: it leads to the web, or to nothing.
    if (url.startsWith("http://"_L1, Qt::CaseInsensitive) || url.startsWith("https://"_L1, Qt::CaseInsensitive))
        m_parts.browser.Navigate(url);
}

void BrowserToolbar::handleDropDown(int index)
{
    m_parts.mnuAttachment.ShowPopupMenu(m_parts.tlbBrowser.dropDownPosition(index));
}

void BrowserToolbar::handleAttachment(int index)
{
    ItemEnclosure enclosure;
    if (m_parts.current.document->GetItemEnclosure(Numbers::toInt16(m_parts.mnuAttachment.ItemKey(index)), enclosure))
        m_parts.openInSystemBrowser(enclosure.Url);
}

void BrowserToolbar::handleCommandState(int command, bool enable)
{
    constexpr int forward = 1;
    constexpr int back = 2;
    if (command == forward)
        m_parts.tlbBrowser.setButtonEnabled(u"browser_suivant"_s, enable);
    else if (command == back)
        m_parts.tlbBrowser.setButtonEnabled(u"browser_precedent"_s, enable);
}

#include "window/BrowserToolbar.h"

#include "controls/cPopupMenu.h"
#include "controls/cToolbar.h"
#include "engine/CurrentFeed.h"
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

const QString stopKey = QStringLiteral("browser_arreter");

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

BrowserToolbar::BrowserToolbar(Parts parts, QObject *parent) : QObject(parent), m_p(std::move(parts))
{
    connect(&m_p.tlbBrowser, &cToolbar::ButtonClick, this, &BrowserToolbar::handleButton);
    connect(&m_p.tlbBrowser, &cToolbar::DropDownPress, this, &BrowserToolbar::handleDropDown);
    connect(&m_p.mnuAttachment, &cPopupMenu::Click, this, &BrowserToolbar::handleAttachment);
    connect(&m_p.browser, &BrowserPane::CommandStateChange, this, &BrowserToolbar::handleCommandState);
    connect(&m_p.browser, &BrowserPane::DownloadBegin, this,
            [this] { m_p.tlbBrowser.setButtonEnabled(stopKey, true); });
    connect(&m_p.browser, &BrowserPane::DocumentComplete, this,
            [this] { m_p.tlbBrowser.setButtonEnabled(stopKey, false); });
}

void BrowserToolbar::handleButton(int index)
{
    switch (index) {
    case 0:
        m_p.browser.GoBack();
        break;
    case 1:
        m_p.browser.GoForward();
        break;
    case 2:
        m_p.browser.Refresh();
        break;
    case 3:
        m_p.browser.Stop();
        m_p.tlbBrowser.setButtonEnabled(stopKey, false);
        break;
    case 5:
        m_p.openInSystemBrowser(m_p.browser.LocationURL());
        break;
    case 6:
        m_p.reading.sendItemByMail(static_cast<qint16>(m_p.reading.selectedItem()));
        break;
    case 8:
        showComments(m_p.current.document->ItemComments(static_cast<qint16>(m_p.reading.selectedItem())));
        break;
    default: // the body of "browser_attachment" does nothing, only its arrow acts
        break;
    }
}

void BrowserToolbar::showComments(const QString &url)
{
    // A feed names this address: it leads to the web, or to nothing.
    if (url.startsWith(QLatin1String("http://"), Qt::CaseInsensitive) ||
        url.startsWith(QLatin1String("https://"), Qt::CaseInsensitive))
        m_p.browser.Navigate(url);
}

void BrowserToolbar::handleDropDown(int index)
{
    m_p.mnuAttachment.ShowPopupMenu(m_p.tlbBrowser.dropDownPosition(index));
}

void BrowserToolbar::handleAttachment(int index)
{
    ItemEnclosure enclosure;
    if (m_p.current.document->GetItemEnclosure(Numbers::toInt16(m_p.mnuAttachment.ItemKey(index)), enclosure))
        m_p.openInSystemBrowser(enclosure.Url);
}

void BrowserToolbar::handleCommandState(int command, bool enable)
{
    constexpr int forward = 1;
    constexpr int back = 2;
    if (command == forward)
        m_p.tlbBrowser.setButtonEnabled(QStringLiteral("browser_suivant"), enable);
    else if (command == back)
        m_p.tlbBrowser.setButtonEnabled(QStringLiteral("browser_precedent"), enable);
}

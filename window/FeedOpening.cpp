// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/FeedOpening.h"

#include "controls/ProgressBar.h"
#include "controls/cToolbar.h"
#include "platform/Literals.h"
#include "platform/Messages.h"
#include "reading/BrowserPane.h"
#include "reading/ItemListView.h"
#include "reading/ReadingPane.h"
#include "window/AddressBand.h"
#include "window/BusySign.h"
#include "window/MainFrame.h"
#include "window/MainToolbar.h"

namespace {

/// In bytes; what is smaller is on show within a tenth of a second.
constexpr qint64 largeFeed = 4 * 1024 * 1024LL;

QString warningTitle()
{
    return u"Avertissement"_s;
}

Message warning(const QString &text, const QString &title)
{
    return {text, title, Message::Icon::Exclamation, Message::Buttons::Ok};
}

Message boxFor(const FeedOpener::Refusal &refusal)
{
    switch (refusal.reason) {
    case FeedOpener::Reason::NoSuchFile:
        return warning(u"Le fichier que vous tentez d'ouvrir n'existe pas"_s, warningTitle());
    case FeedOpener::Reason::SchemeNotFetched:
        return warning(u"Impossible d'ouvrir le flux spécifié :\n\n"_s + refusal.address, u"Erreur"_s);
    case FeedOpener::Reason::HostNotFound:
        return warning(u"L'hôte sur lequel se trouve le fichier n'a pas été trouvé sur le serveur"_s, u"Erreur"_s);
    case FeedOpener::Reason::NotFoundOnServer:
        return warning(u"Le fichier n'a pas été trouvé sur le serveur"_s, u"Erreur 404"_s);
    case FeedOpener::Reason::UnexpectedStatus:
        return {u"Cas non géré actuellement : "_s + QString::number(refusal.status), QString(), Message::Icon::None,
                Message::Buttons::Ok};
    case FeedOpener::Reason::NothingDownloaded:
        return warning(u"Impossible de trouver le fichier"_s, warningTitle());
    case FeedOpener::Reason::UnsupportedVersion:
        return warning(u"La version du fichier RSS n'est pas supportée"_s, warningTitle());
    case FeedOpener::Reason::UnknownFormat:
        return warning(u"Format du fichier RSS inconnu"_s, warningTitle());
    case FeedOpener::Reason::UnreadableFeed:
        break;
    }
    return warning(u"Erreur lors du chargement du canal RSS"_s, warningTitle());
}

} // namespace

FeedOpening::FeedOpening(Parts parts, QObject *parent) : QObject(parent), m_parts(std::move(parts))
{
    const FeedOpener &opener = m_parts.opener;
    const MainFrame &frame = m_parts.frame;
    connect(frame.fraToolbar, &AddressBand::entered, this, &FeedOpening::openEntered);
    connect(frame.fraToolbar, &AddressBand::imageClicked, this, &FeedOpening::handleImageClick);
    // Queued: what is opened may raise a run-time error, which can't travel through the browser engine.
    connect(frame.WebBrowser1, &BrowserPane::feedLinkAccepted, this, &FeedOpening::openAddress, Qt::QueuedConnection);
    connect(&opener, &FeedOpener::fetchBegan, this, [this] {
        m_parts.frame.cToolbar1->setButtonEnabled(MainToolbar::Ajouter, false);
        m_parts.frame.prbChargement
            ->show(); // it stays on show when the address is refused: nothing else tells of the try
    });
    connect(&opener, &FeedOpener::progress, this,
            [this](int percent) { m_parts.frame.prbChargement->setValue(percent); });
    connect(&opener, &FeedOpener::fetchEnded, this, [this] { m_parts.frame.prbChargement->hide(); });
    connect(&opener, &FeedOpener::loadBegan, this, [this](qint64 bytes) {
        if (bytes >= largeFeed && !m_busySign)
            m_busySign = std::make_unique<BusySign>(m_parts.frame);
    });
    connect(&opener, &FeedOpener::opened, this, &FeedOpening::handleOpened);
    connect(&opener, &FeedOpener::refused, this, &FeedOpening::handleRefused);
    connect(&opener, &FeedOpener::credentialsAsked, this, [this] { m_parts.showAuthentication(); });
    connect(&opener, &FeedOpener::pageOffered, this, &FeedOpening::handlePageOffered);
}

FeedOpening::~FeedOpening() = default;

AddressBox &FeedOpening::txtURL() const
{
    return m_parts.frame.fraToolbar->txtURL();
}

QString FeedOpening::addressText() const
{
    return txtURL().text();
}

void FeedOpening::setAddressText(const QString &text)
{
    txtURL().setText(text);
}

void FeedOpening::openEntered()
{
    m_parts.frame.tlbBrowser->setButtonEnabled(u"send_mail"_s, false);
    m_parts.opener.openEntered(addressText());
}

void FeedOpening::openAddress(const QString &address)
{
    setAddressText(address);
    openEntered();
}

void FeedOpening::openCommandLine(const QString &text)
{
    setAddressText(m_parts.opener.enteredByCommandLine(text));
    m_parts.frame.lvwItems->items().clear();
    openEntered();
}

void FeedOpening::LoadFile()
{
    m_parts.opener.LoadFile(addressText());
}

void FeedOpening::handleImageClick()
{
    const QString path = m_parts.askFeedFile();
    if (!path.isEmpty())
        setAddressText(path);
}

void FeedOpening::handleOpened(FeedOpener::Source source)
{
    // A local file leaves the button as the feed before it had it.
    if (source != FeedOpener::Source::LocalFile)
        m_parts.frame.cToolbar1->setButtonEnabled(MainToolbar::Ajouter, source == FeedOpener::Source::Network);
    m_parts.reading.FillItemList();
    m_busySign.reset();
    if (m_parts.opener.openedRepaired())
        m_parts.frame.setStatusText(u"flux réparé"_s);
}

void FeedOpening::handleRefused(const FeedOpener::Refusal &refusal)
{
    m_busySign.reset();
    m_parts.messages.show(boxFor(refusal));
}

void FeedOpening::handlePageOffered()
{
    m_busySign.reset();
    const Message question{u"La ressource spécifiée n'est pas un fichier RSS valide, voulez-vous "
                           "essayer d'ouvrir le fichier dans le navigateur ?"_s,
                           warningTitle(), Message::Icon::Exclamation, Message::Buttons::YesNo};
    if (m_parts.messages.show(question) == Messages::Answer::Yes)
        m_parts.frame.WebBrowser1->Navigate(addressText());
}

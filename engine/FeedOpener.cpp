#include "engine/FeedOpener.h"

#include "engine/OpeningWindow.h"
#include "platform/Files.h"
#include "platform/Messages.h"
#include "platform/RunTimeError.h"
#include "platform/net/Downloader.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr QLatin1String http("http://");

QString failureText()
{
    return QStringLiteral("Erreur lors du chargement du canal RSS");
}

QString warningTitle()
{
    return QStringLiteral("Avertissement");
}

/// The text of the address box without "feed:" (any first 5 characters) and the slashes behind it.
QString withoutScheme(const QString &text)
{
    if (text.startsWith(http))
        return text;
    const QString rest = text.mid(5);
    return rest.startsWith(QLatin1String("//")) ? rest.mid(2) : rest;
}

} // namespace

FeedOpener::FeedOpener(DataDirectory directory, CurrentFeed &current, Downloader &dwlFeed, OpeningWindow &window,
                       Messages &messages, QObject *parent)
    : QObject(parent), m_directory(std::move(directory)), m_current(current), m_dwlFeed(dwlFeed), m_window(window),
      m_messages(messages)
{
    connect(&m_dwlFeed, &Downloader::DownloadProgress, this, &FeedOpener::handleDownloadProgress);
    connect(&m_dwlFeed, &Downloader::DownloadComplete, this, &FeedOpener::handleDownloadComplete);
}

void FeedOpener::openFeedNode(const FeedNodePtr &node)
{
    if (!node || node->image() != NodeImage::Feed)
        return;
    if (m_current.document->IsLoaded())
        m_current.document->Save();
    if (m_current.document->Load(m_directory.cacheFile(node->key())) != LoadOk) {
        warn(failureText(), warningTitle());
        return;
    }
    m_current.addressFeedShown = false;
    m_window.enableAddButton(false);
    m_window.FillItemList();
}

void FeedOpener::handleAddressEntered()
{
    m_window.enableSendMailButton(false);
    const QString text = m_window.addressText();
    if (text.startsWith(http) || text.startsWith(QLatin1String("feed:"))) {
        m_current.strUsername.clear();
        m_current.strPassword.clear();
        LoadFile();
    } else {
        openLocalFile(text);
    }
}

void FeedOpener::openLocalFile(const QString &path)
{
    m_current.document->Save();
    if (!Files::exists(path)) {
        warn(QStringLiteral("Le fichier que vous tentez d'ouvrir n'existe pas"), warningTitle());
        return;
    }
    const QString copy = m_directory.file(QStringLiteral("tmp.xml"));
    Files::copy(path, copy);
    if (m_current.document->Load(copy) == LoadOk)
        m_window.FillItemList();
    else
        warn(failureText(), warningTitle());
}

void FeedOpener::openCommandLine(const QString &text)
{
    if (text.startsWith(http) || text.startsWith(QLatin1String("feed:"))) {
        m_window.setAddressText(text);
    } else {
        if (text.size() < 2)
            throw RunTimeError::invalidCall();
        m_window.setAddressText(text.mid(1, text.size() - 2));
    }
    m_window.emptyItemList();
    handleAddressEntered();
}

QString FeedOpener::addressToFetch(const QString &text)
{
    const QString address = withoutScheme(text);
    if (address.startsWith(http))
        return address;
    return address.contains(QLatin1String("//")) ? QString() : QString(http + address);
}

void FeedOpener::LoadFile()
{
    const QString text = m_window.addressText();
    m_current.addressFeedShown = false;
    m_window.enableAddButton(false);
    m_window.showProgress(true);
    const QString destination = m_directory.file(QStringLiteral("tmp.xml"));
    if (Files::exists(destination))
        Files::remove(destination);
    const QString url = addressToFetch(text);
    if (url.isEmpty()) { // the progress bar stays on show; so wanted
        warn(QStringLiteral("Impossible d'ouvrir le flux spécifié :\n\n") + withoutScheme(text),
             QStringLiteral("Erreur"));
        return;
    }
    m_dwlFeed.Download(url, 0, destination, m_current.strUsername, m_current.strPassword);
}

void FeedOpener::handleDownloadProgress(double percent)
{
    m_window.setProgress(static_cast<int>(std::nearbyint(std::clamp(percent, 0.0, 100.0))));
}

void FeedOpener::handleDownloadComplete(qint32 status)
{
    if (status == Downloader::Cancelled) // another download took its place, and that one will tell how it ended
        return;
    m_window.showProgress(false);
    switch (status) {
    case 200:
        openDownloaded();
        break;
    case Downloader::HostNotFound:
        warn(QStringLiteral("L'hôte sur lequel se trouve le fichier n'a pas été trouvé sur le serveur"),
             QStringLiteral("Erreur"));
        break;
    case Downloader::AuthenticationAsked:
        m_window.askForCredentials();
        break;
    case 404:
        warn(QStringLiteral("Le fichier n'a pas été trouvé sur le serveur"), QStringLiteral("Erreur 404"));
        break;
    default:
        m_messages.show({QStringLiteral("Cas non géré actuellement : ") + QString::number(status), QString(),
                         Message::Icon::None, Message::Buttons::Ok});
    }
}

void FeedOpener::openDownloaded()
{
    if (!m_current.addressFeedUnsaved)
        m_current.document->Save();
    switch (m_current.document->Load(m_directory.file(QStringLiteral("tmp.xml")))) {
    case LoadOk:
        m_current.addressFeedShown = true;
        m_current.addressFeedUnsaved = true;
        m_window.enableAddButton(true);
        m_window.FillItemList();
        break;
    case LoadFileNotFound:
        warn(QStringLiteral("Impossible de trouver le fichier"), warningTitle());
        break;
    case LoadNotAFeed: {
        const Message question{QStringLiteral("La ressource spécifiée n'est pas un fichier RSS valide, voulez-vous "
                                              "essayer d'ouvrir le fichier dans le navigateur ?"),
                               warningTitle(), Message::Icon::Exclamation, Message::Buttons::YesNo};
        if (m_messages.show(question) == Messages::Answer::Yes)
            m_window.navigate(m_window.addressText());
        break;
    }
    case LoadBadVersion:
    case LoadBadVersionOther:
        warn(QStringLiteral("La version du fichier RSS n'est pas supportée"), warningTitle());
        break;
    case LoadUnknownFormat:
        warn(QStringLiteral("Format du fichier RSS inconnu"), warningTitle());
        break;
    default:
        warn(failureText(), warningTitle());
    }
}

void FeedOpener::warn(const QString &text, const QString &title)
{
    m_messages.show({text, title, Message::Icon::Exclamation, Message::Buttons::Ok});
}

// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/FeedOpener.h"

#include "engine/CurrentFeed.h"
#include "platform/Files.h"
#include "platform/Literals.h"
#include "platform/RunTimeError.h"
#include "platform/net/Downloader.h"

#include <QFileInfo>

#include <algorithm>
#include <cmath>

FeedOpener::FeedOpener(DataDirectory directory, CurrentFeed &current, Downloader &dwlFeed,
                       Choice<AddressForms> addresses, QObject *parent)
    : QObject(parent), m_directory(std::move(directory)), m_current(current), m_dwlFeed(dwlFeed), m_addresses(addresses)
{
    connect(&m_dwlFeed, &Downloader::DownloadProgress, this, &FeedOpener::handleDownloadProgress);
    connect(&m_dwlFeed, &Downloader::DownloadComplete, this, &FeedOpener::handleDownloadComplete);
}

void FeedOpener::openFeedNode(const FeedNodePtr &node)
{
    if (!node || node->image() != NodeImage::Feed)
        return;
    tellLoad(m_directory.cacheFile(node->key()));
    if (m_current.document->IsLoaded())
        m_current.document->Save();
    if (m_current.document->Load(m_directory.cacheFile(node->key())) != LoadOk) {
        refuse(Reason::UnreadableFeed);
        return;
    }
    m_current.document->SetAddress(m_addresses->addressToUpdate(node->tag));
    m_current.addressFeedShown = false;
    Q_EMIT opened(Source::CacheFile);
}

void FeedOpener::openEntered(const QString &text)
{
    if (m_addresses->isFeedAddress(text)) {
        m_current.strUsername.clear();
        m_current.strPassword.clear();
        LoadFile(text);
    } else {
        openLocalFile(text);
    }
}

void FeedOpener::tellLoad(const QString &path)
{
    Q_EMIT loadBegan(QFileInfo(path).size() + QFileInfo(m_current.document->Path()).size());
}

void FeedOpener::openLocalFile(const QString &path)
{
    tellLoad(path);
    m_current.document->Save();
    if (!Files::exists(path)) {
        refuse(Reason::NoSuchFile);
        return;
    }
    const QString copy = m_directory.file(u"tmp.xml"_s);
    Files::copy(path, copy);
    if (m_current.document->Load(copy) == LoadOk)
        Q_EMIT opened(Source::LocalFile);
    else
        refuse(Reason::UnreadableFeed);
}

bool FeedOpener::openedRepaired() const
{
    return m_current.document->IsRepaired();
}

QString FeedOpener::enteredByCommandLine(const QString &text) const
{
    if (m_addresses->isFeedAddress(text))
        return text;
    if (text.size() < 2)
        throw RunTimeError::invalidCall();
    return text.mid(1, text.size() - 2);
}

void FeedOpener::LoadFile(const QString &text)
{
    m_current.addressFeedShown = false;
    Q_EMIT fetchBegan();
    const QString destination = m_directory.file(u"tmp.xml"_s);
    if (Files::exists(destination))
        Files::remove(destination);
    m_url = m_addresses->addressToFetch(text);
    if (m_url.isEmpty())
        Q_EMIT refused({Reason::SchemeNotFetched, m_addresses->withoutFeedScheme(text)});
    else
        m_dwlFeed.Download(m_url, 0, destination, m_current.strUsername, m_current.strPassword);
}

void FeedOpener::handleDownloadProgress(double percent)
{
    Q_EMIT progress(static_cast<int>(std::nearbyint(std::clamp(percent, 0.0, 100.0))));
}

void FeedOpener::handleDownloadComplete(qint32 status)
{
    if (status == Downloader::Cancelled) // another download took its place, and that one will tell how it ended
        return;
    Q_EMIT fetchEnded();
    switch (status) {
    case 200:
        openDownloaded();
        break;
    case Downloader::HostNotFound:
        refuse(Reason::HostNotFound);
        break;
    case Downloader::AuthenticationAsked:
        Q_EMIT credentialsAsked();
        break;
    case 404:
        refuse(Reason::NotFoundOnServer);
        break;
    default:
        Q_EMIT refused({Reason::UnexpectedStatus, {}, status});
    }
}

void FeedOpener::openDownloaded()
{
    tellLoad(m_directory.file(u"tmp.xml"_s));
    m_current.document->Save(); // an address or a local file on show is stale now: the download has replaced it
    switch (m_current.document->Load(m_directory.file(u"tmp.xml"_s))) {
    case LoadOk:
        m_current.document->SetAddress(m_url);
        m_current.addressFeedShown = true;
        Q_EMIT opened(Source::Network);
        break;
    case LoadFileNotFound:
        refuse(Reason::NothingDownloaded);
        break;
    case LoadNotAFeed:
        Q_EMIT pageOffered();
        break;
    case LoadBadVersion:
    case LoadBadVersionOther:
        refuse(Reason::UnsupportedVersion);
        break;
    case LoadUnknownFormat:
        refuse(Reason::UnknownFormat);
        break;
    default:
        refuse(Reason::UnreadableFeed);
    }
}

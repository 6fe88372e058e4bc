// SPDX-License-Identifier: GPL-3.0-or-later

#include "exchange/OpmlDownload.h"

#include "platform/net/Downloader.h"

OpmlDownload::OpmlDownload(std::unique_ptr<Downloader> downloader, QString destination)
    : m_dwlOPML(std::move(downloader)), m_destination(std::move(destination))
{
    connect(m_dwlOPML.get(), &Downloader::DownloadComplete, this, &OpmlDownload::handleComplete);
}

OpmlDownload::~OpmlDownload() = default;

void OpmlDownload::start(const QString &url)
{
    m_dwlOPML->Download(url, 0, m_destination, QString(), QString());
}

void OpmlDownload::handleComplete(qint32 status)
{
    if (status == 200)
        Q_EMIT fetched(m_destination);
    else if (status != Downloader::Cancelled) // what was given up for another one
        Q_EMIT failed(status);
}

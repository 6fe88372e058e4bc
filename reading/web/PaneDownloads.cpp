// SPDX-License-Identifier: GPL-3.0-or-later

#include "reading/web/PaneDownloads.h"

#include "platform/Literals.h"
#include "reading/web/PageBoxes.h"
#include "reading/web/PanePage.h"

#include <QDir>
#include <QFileInfo>
#include <QPointer>
#include <QStandardPaths>
#include <QWebEngineDownloadRequest>

PaneDownloads::PaneDownloads(PageBoxes &boxes, const WebPane::Events &events) : m_boxes(boxes), m_events(events) {}

void PaneDownloads::handle(QWebEngineDownloadRequest &download)
{
    auto *page = qobject_cast<PanePage *>(download.page());
    if (page == nullptr || !page->mayDownload(download))
        return;
    const QPointer<QWebEngineDownloadRequest> request = &download;
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::DownloadLocation));
    const QString proposed = folder.filePath(QFileInfo(download.downloadFileName()).fileName());
    const auto ask = m_events.askDownloadPath; // outlives this object, should the pane go meanwhile
    QString path;
    const auto choose = [&ask, &path, &proposed] {
        path = ask(proposed);
        return !path.isEmpty();
    };
    if (!m_boxes.show(choose, u"download"_s).value_or(false) || !request)
        return;
    const QFileInfo chosen(path);
    request->setDownloadDirectory(chosen.absolutePath());
    request->setDownloadFileName(chosen.fileName());
    connect(request, &QWebEngineDownloadRequest::isFinishedChanged, this, [this, request, chosen] {
        const bool complete = request && request->state() == QWebEngineDownloadRequest::DownloadCompleted;
        m_events.statusText(
            (complete ? u"Téléchargement terminé : %1"_s : u"Échec du téléchargement : %1"_s).arg(chosen.fileName()));
    });
    request->accept();
}

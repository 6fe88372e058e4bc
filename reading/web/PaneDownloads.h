// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "reading/WebPane.h"

#include <QObject>

class PageBoxes;
class QWebEngineDownloadRequest;

/// The downloads of the pane: each goes where the user says, or nowhere. One that no act of the user began, or that
/// would copy something local, is dropped without a question.
class PaneDownloads final : public QObject
{
    Q_OBJECT

public:
    /// `boxes` and `events` outlive the object.
    PaneDownloads(PageBoxes &boxes, const WebPane::Events &events);

    /// A request that isn't accepted when this returns is dropped by the engine.
    void handle(QWebEngineDownloadRequest &download);

private:
    PageBoxes &m_boxes;
    const WebPane::Events &m_events;
};

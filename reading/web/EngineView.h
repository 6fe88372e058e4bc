// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "reading/WebPane.h"
#include "reading/web/PageBoxes.h"
#include "reading/web/PageColours.h"
#include "reading/web/PaneDownloads.h"
#include "reading/web/PanePage.h"
#include "reading/web/PaneScheme.h"
#include "reading/web/RequestGuard.h"

#include <QList>
#include <QPointer>

class QWebEngineNewWindowRequest;
class QWebEngineProfile;
class QWebEngineView;

/// The browser engine behind the pane: one page in a profile that keeps nothing on the disk, and the windows that the
/// user allowed it to open.
class EngineView final : public WebPane
{
public:
    EngineView(const Folder &folder, Messages &messages, QWidget *parent, Events events);

    /// Closes the windows that the pane was allowed to open as well.
    ~EngineView() override;

    QWidget *widget() override;
    void navigate(const QString &target) override;
    void goBack() override;
    void goForward() override;
    void refresh() override;
    void stop() override;
    QString location() const override;

private:
    void connectPage();
    void connectColours();
    void clearEarlierPages();
    void handleNewWindow(QWebEngineNewWindowRequest &request, PanePage &opener);
    void handleRendererGone(QWebEnginePage::RenderProcessTerminationStatus status);

    QObject m_context; ///< of all connections: with it they end
    PageColours m_colours;
    PaneScheme m_scheme;
    RequestGuard m_guard;
    PageBoxes m_boxes;
    Events m_events;
    PaneDownloads m_downloads;
    QPointer<QWebEngineProfile> m_profile;
    QPointer<PanePage> m_page;
    QPointer<QWebEngineView> m_view;
    QList<QPointer<QWebEngineView>> m_popups;
    QString m_pending; ///< asked for while a box is open
    bool m_loading = false;
    int m_pagesShown = 0;     ///< of our own
    int m_rendererDeaths = 0; ///< since the last act of the user
};

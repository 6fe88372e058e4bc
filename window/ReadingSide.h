// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "reading/PageWriter.h"
#include "reading/ReadingPane.h"
#include "window/BrowserToolbar.h"
#include "window/WindowForReading.h"

#include <QObject>
#include <QString>

#include <functional>

class MainFrame;
class UpdateScheduler;
struct LongLived;

/// The right side of the main window, from the list of items to their pages: what the reading floor is made of, the
/// page's toolbar, and what a page tells in the status bar.
class ReadingSide : public QObject
{
    Q_OBJECT

public:
    /// What it works with. Nothing is owned.
    struct Parts
    {
        const LongLived &longLived;
        MainFrame &frame;
        std::function<void(const QString &text)> showMailDialog;
        std::function<void(const QString &url)> openInSystemBrowser;
        std::function<void()> showExtensions;
    };

    explicit ReadingSide(const Parts &parts, QObject *parent = nullptr);

    ReadingPane &pane() { return m_pane; }

    /// Shows `url`, an address or the path of one of the pages, in the browser pane.
    void navigate(const QString &url);

private:
    void connectPage(const Parts &parts);
    void handlePageProgress(int progress, int progressMax);

    MainFrame &m_frame;
    PageWriter m_pages;
    WindowForReading m_windowForReading;
    ReadingPane m_pane;
    BrowserToolbar m_toolbar;
};

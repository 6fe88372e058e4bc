// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/ReadingSide.h"

#include "controls/ProgressBar.h"
#include "engine/CurrentFeed.h"
#include "engine/UpdateScheduler.h"
#include "platform/Numbers.h"
#include "reading/BrowserPane.h"
#include "window/LongLived.h"
#include "window/MainFrame.h"

ReadingSide::ReadingSide(const Parts &parts, QObject *parent)
    : QObject(parent), m_frame(parts.frame),
      m_pages(parts.longLived.directory, parts.longLived.current, parts.longLived.dates, parts.longLived.pageText),
      m_windowForReading({*m_frame.tlbBrowser, *m_frame.lvwItems, m_frame.menus,
                          [&scheduler = parts.longLived.scheduler] { return scheduler.updateRunning(); },
                          parts.showMailDialog}),
      m_pane(m_pages, parts.longLived.current, parts.longLived.settings, *m_frame.lvwItems, *m_frame.WebBrowser1,
             m_windowForReading),
      m_toolbar({*m_frame.tlbBrowser, m_frame.menus.mnuAttachment, *m_frame.WebBrowser1, m_pane,
                 parts.longLived.current, parts.openInSystemBrowser})
{
    connectPage(parts);
}

void ReadingSide::connectPage(const Parts &parts)
{
    const BrowserPane *page = m_frame.WebBrowser1;
    connect(page, &BrowserPane::StatusTextChange, this, [this](const QString &text) { m_frame.setStatusText(text); });
    connect(page, &BrowserPane::ProgressChange, this, &ReadingSide::handlePageProgress);
    connect(page, &BrowserPane::DocumentComplete, this, [this] { m_frame.prbChargement->hide(); });
    connect(page, &BrowserPane::systemLinkActivated, this, parts.openInSystemBrowser);
    connect(page, &BrowserPane::extensionsAsked, this, parts.showExtensions);
}

void ReadingSide::navigate(const QString &url)
{
    m_frame.WebBrowser1->Navigate(url);
}

void ReadingSide::handlePageProgress(int progress, int progressMax)
{
    if (progressMax == 0)
        return;
    m_frame.prbChargement->show();
    // A share of one, not in percent: for a page the bar only shows that something comes, and percent are kept for
    // downloads.
    m_frame.prbChargement->setValue(Numbers::roundToInt32(static_cast<double>(progress) / progressMax));
}

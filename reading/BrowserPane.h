// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "core/DataDirectory.h"

#include <QString>
#include <QWidget>

#include <memory>

class Messages;

/// The browser pane `WebBrowser1`: shows the pages of the data directory, which it serves under a private scheme
/// (tmp.htm, home.htm, style.css, slien.gif and nothing else; no script runs on them and they reach no file), and pages
/// of the web.
///
/// The browser engine is started with the first page that is shown while the pane is visible, so that the window, and a
/// program in the tray, don't wait for it or hold it. Until then the first navigation asked for, with which the back
/// list begins, and the last one are remembered.
///
/// The boxes of the pane (a link to a feed, a pop-up, a download, what a page says itself) are modal and run inside the
/// engine's event. They draw on one budget, which only an act of the user renews; a navigation that the program asks
/// for counts as one. One that it asks for while a box is open is remembered and made when the box is closed. No page
/// is asked, or asks, whether the program may leave it.
class BrowserPane : public QWidget
{
    Q_OBJECT

public:
    /// `messages` outlives the pane. The pane never sets up the engine's sandbox; see docs/pane.md.
    BrowserPane(DataDirectory directory, Messages &messages, QWidget *parent = nullptr);

    /// Closes the windows that the pane was allowed to open as well.
    ~BrowserPane() override;

    /// Loads `url`: an address, or the path of a file (one of the four pages as a rule). Both do the same. Loading the
    /// address on show again loads it afresh. A text that is no address changes nothing; an address of another program
    /// of the system (mailto: and the like) is handed out by systemLinkActivated().
    void Navigate(const QString &url);
    void Navigate2(const QString &url);

    void GoBack();
    void GoForward();
    void Refresh();
    void Stop();

    /// The address of the page on show; the `file:` address of the file for a page of the data directory; "" before the
    /// first page.
    QString LocationURL() const;

Q_SIGNALS:
    void StatusTextChange(const QString &text);

    /// Only between DownloadBegin() and DocumentComplete().
    void ProgressChange(int progress, int progressMax);

    /// Command 1 is forward, 2 is back.
    void CommandStateChange(int command, bool enable);
    void DownloadBegin();
    void DocumentComplete();

    /// A followed link (in any frame) looks like a feed and the user wants it opened as one; the pane doesn't go there.
    void feedLinkAccepted(const QString &url);

    /// A link that belongs to another program of the system (mailto: and the like) was followed.
    void systemLinkActivated(const QString &url);

    /// The link of the start page to the choice of extensions was followed, which no other page can do. The engine
    /// has finished with it: a dialog may be shown.
    void extensionsAsked();

protected:
    void showEvent(QShowEvent *event) override;

    /// Asks where a download goes; "" refuses it. `proposed` is a path in the user's download folder.
    virtual QString askDownloadPath(const QString &proposed);

private:
    bool isOnScreen() const;

    struct Private;
    std::unique_ptr<Private> d;
};

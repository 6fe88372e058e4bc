// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "window/Desktop.h"
#include "window/Dialogs.h"
#include "window/FeedOpening.h"
#include "window/LongLived.h"
#include "window/MainCommands.h"
#include "window/MainFrame.h"
#include "window/ProgramWindow.h"
#include "window/ReadingSide.h"
#include "window/TrayIcon.h"
#include "window/TreeCommands.h"
#include "window/UpdateDisplay.h"
#include "window/WindowKeys.h"

#include <QWidget>

#include <memory>

/// The main window: it lives from start to end, owns frame, menus and what is done with them, and hands each of them
/// what it needs. What lives longer is handed to it.
class frmPrinc final : public QWidget, public ProgramWindow
{
    Q_OBJECT

public:
    /// Makes the window with all its parts, empty.
    frmPrinc(const LongLived &longLived, Desktop desktop, Dialogs::Outside outside);
    ~frmPrinc() override;

    // ProgramWindow
    void place(const QRect &pixels) override;
    void build() override;
    void showStartPage() override;
    void showTrayIcon(bool shown) override;
    void openCommandLine(const QString &text) override;
    void present() override { show(); }
    void hideToTray() override;
    void comeForward(const QByteArray &activationToken) override;
    void takeHandOver(const QString &text, const QByteArray &activationToken) override;
    void tell(const QString &text) override;
    void dismissPopup() override { m_updateDisplay.dismissPopup(); }
    QString takeBandLayout() override { return m_frame.takeBandLayout(); }
    WindowGeometry geometryInTwips() const override { return m_frame.geometryInTwips(); }

    /// Asks for the end of the program from the event loop, as the close box does.
    void postClose();

Q_SIGNALS:
    /// The program is to end: the window was closed, or the end was asked for.
    void closeAsked();

protected:
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    bool focusNextPrevChild(bool next) override;

private:
    Dialogs::Parts dialogParts();
    TreeCommands::Parts treeCommandParts();
    QString homePage() const;
    FeedOpening::Parts openingParts();
    void AddFeed(const std::shared_ptr<CachedFeed> &document, const QString &strURL);
    void openInSystemBrowser(const QString &url);
    void importFile(const QString &path);
    void openIcon();
    void handleTrayDoubleClick();

    LongLived m_longLived;
    Desktop m_desktop;
    Dialogs m_dialogs;
    MainFrame m_frame;
    ReadingSide m_reading;
    FeedOpening m_opening;
    UpdateDisplay m_updateDisplay;
    TreeCommands m_treeCommands;
    WindowKeys m_keys;
    std::unique_ptr<MainCommands> m_commands; ///< made when the frame is built
    std::unique_ptr<TrayIcon> m_trayIcon;
    bool m_iconic = false; ///< hidden because it was minimised
};

#pragma once

#include "core/MainWindow.h"
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

#include <QWidget>

#include <memory>

/// The main window: it lives from start to end, owns frame, menus and what is done with them, and hands each of them
/// what it needs. What lives longer is handed to it.
class frmPrinc final : public QWidget, public ProgramWindow, public MainWindow
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
    void comeForward() override;
    void takeHandOver(const QString &text) override;
    void dismissPopup() override { m_updateDisplay.dismissPopup(); }
    QString takeBandLayout() override { return m_frame.takeBandLayout(); }
    WindowGeometry geometryInTwips() const override { return m_frame.geometryInTwips(); }

    /// Asks for the end of the program from the event loop, as the close box does.
    void postClose();

    // MainWindow
    void AddFeed(const std::shared_ptr<CachedFeed> &document, const QString &strURL) override;
    void LoadFile() override { m_opening.LoadFile(); }
    void navigate(const QString &url) override { m_reading.navigate(url); }
    void openInSystemBrowser(const QString &url) override;
    QString addressText() const override { return m_opening.addressText(); }
    void setAddressText(const QString &text) override { m_opening.setAddressText(text); }
    void setCredentials(const QString &username, const QString &password) override;
    std::shared_ptr<CachedFeed> currentFeed() const override;
    bool addressFeedShown() const override;
    FeedTables &feedTables() override;
    FeedTree &feedTree() override { return m_longLived.tree; }
    FeedTreeState &treeState() override { return m_longLived.treeState; }
    clsDES &cipher() override { return m_longLived.cipher; }
    AppSettings &settings() override { return m_longLived.settings; }
    QString dataFile(const QString &name) const override { return m_longLived.directory.file(name); }
    QWidget *frame() override { return this; }

Q_SIGNALS:
    /// The program is to end: the window was closed, or the end was asked for.
    void closeAsked();

protected:
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    TreeCommands::Parts treeCommandParts();
    QString homePage() const;
    FeedOpening::Parts openingParts();
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
    std::unique_ptr<MainCommands> m_commands; ///< made when the frame is built
    std::unique_ptr<TrayIcon> m_trayIcon;
    bool m_iconic = false; ///< hidden because it was minimised
};

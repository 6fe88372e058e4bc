#pragma once

#include "core/FeedCatalogue.h"
#include "core/SettingsFile.h"
#include "engine/CurrentFeed.h"
#include "engine/FeedOpener.h"
#include "engine/UpdateScheduler.h"
#include "platform/net/InstanceServer.h"
#include "reading/PageWriter.h"
#include "reading/ReadingPane.h"
#include "support/clsDES.h"
#include "window/Commands.h"
#include "window/Dialogs.h"
#include "window/MainMenus.h"
#include "window/RebarBands.h"
#include "window/TrayShell.h"
#include "window/TreeCommands.h"
#include "window/WindowForEngine.h"
#include "window/WindowForReading.h"

#include <QWidget>

#include <functional>
#include <memory>

class AddressBand;
class BrowserPane;
class BrowserToolbar;
class Downloader;
class FeedTreeView;
class ItemListView;
class Messages;
class ProgressBar;
class SplitBar;
class StatusBar;
class cToolbar;
class cToolbarHost;
class frmSysTray;
class frmUpdate;

/// The main window: it lives from start to end, owns all panes, menus and the feed on show, and connects them. The
/// process ends when it is unloaded.
class frmPrinc final : public QWidget
{
    Q_OBJECT

public:
    /// What the window works with. References aren't owned. All functions must be set.
    struct Surroundings
    {
        DataDirectory directory;
        AppSettings &settings; ///< loaded already
        const SettingsFile &settingsFile;
        ScreenScale scale;
        Messages &messages;
        Clock clock = {};
        Wait wait = {};
        std::function<bool()> isConnected = {};
        std::function<std::unique_ptr<Downloader>()> makeDownloader = {};
        std::function<std::unique_ptr<TrayShell>()> makeTrayShell = {};
        std::function<std::unique_ptr<HelpSystem>()> makeHelp = {};
        std::function<bool(const QString &url)> openInSystemBrowser = {}; ///< false when the address was refused
        TreeCommands::InputBox inputBox = {};
        std::function<QString(const QString &title, const QString &filter)> askFeedFile =
            {}; ///< "" when the user cancels
        frmOptions::RunAtStartup runAtStartup = {};
        QString runtimeDirectory = {};              ///< where a second start is listened for
        std::function<void()> releaseInstance = {}; ///< gives the instance lock back
    };

    /// Makes the window with all its parts, empty.
    explicit frmPrinc(Surroundings surroundings);
    ~frmPrinc() override;

    /// The load sequence: builds the frame from the settings, shows the start page, reads the catalogue, shows the tray
    /// icon, listens for a second start, opens `commandLine` unless it is empty, starts one of the update timers. The
    /// window stays hidden. Throws the RunTimeErrors of all these.
    void load(const QString &commandLine);

    /// The one road out, once: whatever asks for the end comes here. Stops updates, removes the popup, saves the feed
    /// on show, takes the band layout, removes the tray icon, stops listening, then saveAndClose(). Throws their
    /// RunTimeErrors.
    void unload();

    /// Asks for the end from the event loop, as the close box does.
    void postClose();

    /// For the end by a run-time error: from here on nothing is saved or downloaded any more, and unload() does
    /// nothing.
    void abandon();

    bool isUnloaded() const { return m_unloaded; }

    /// Writes the catalogue's values, then the settings, then gives the instance lock back.
    void saveAndClose();

    /// Restores the window when it is iconic, shows it, and brings it to the front.
    void comeForward();

    /// Hides the window when an icon leads back to it, otherwise minimises it as other windows are.
    void hideToTray();

    /// "mnuOffice" or "mnuStandard".
    void setStyle(const QString &key);

    /// "mnuTBGrande" or "mnuTBPetite".
    void setToolbarSize(const QString &key);

    /// Places bands, panes and status bar for the window's present size.
    void recalcLayout();

    void updateFeed(const FeedNodePtr &node);
    void updateAllFeeds();
    void showFeedProperties();

    /// Subscribes to `document` at the address `strURL`; "" stands for the text of the address box. With no document
    /// the feed on show is meant, if it was opened by address; otherwise nothing happens. The tree's selection decides
    /// the folder. A document given becomes the one on show.
    void AddFeed(const std::shared_ptr<CachedFeed> &document, const QString &strURL);

    /// Opens through the network what the address box holds, with the credentials.
    void LoadFile();

    /// Shows `url` in the browser pane.
    void navigate(const QString &url);

    /// Hands `url` to the system's browser.
    void openInSystemBrowser(const QString &url);

    /// The text of the address box `txtURL`.
    QString addressText() const;
    void setAddressText(const QString &text);

    /// True when the feed on show came from the address box: it is unsubscribed.
    bool addressFeedShown() const { return m_current.addressFeedShown; }

    FeedTables &feedTables() { return m_catalogue.tables; }
    FeedTree &feedTree() { return m_tree; }

Q_SIGNALS:
    /// Everything is saved; the process can end.
    void unloaded();

protected:
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    Dialogs::Needs dialogNeeds();
    void buildFrame();
    void buildStatusBar();
    void placeProgressBar();
    void nameParts();
    void connectPanes();
    void addCommands();
    void connectMenu(cPopupMenu &menu);
    void connectTray();
    void showTrayIcon(bool shown);
    void setHostHeight();
    WindowGeometry geometryInTwips() const;
    void announce(const QString &title, qint16 count);
    void openIcon();
    void handleMainButton(int index);
    void handleColumnEntry(int index);
    void handlePageProgress(int progress, int progressMax);
    void handleFeedLink(const QString &url);
    void handleImage1();
    void handleHandOver(const QString &text);
    void handleActivationAsked();
    void handleTrayMenu(const QString &key);

    Surroundings m_s;
    clsDES m_DESCrypt;
    FeedTree m_tree;
    FeedCatalogue m_catalogue;
    CurrentFeed m_current;
    std::unique_ptr<Downloader> m_dwlFeed;
    std::unique_ptr<Downloader> m_dwlUpdate;
    Dialogs m_dialogs;

    // The controls are children of the window.
    cToolbar *tbrMenu;
    cToolbar *cToolbar1;
    cToolbar *cToolbar2; ///< holds no buttons
    AddressBand *fraToolbar;
    FeedTreeView *tvwFavoris;
    SplitBar *picHorizontalSplit;
    ItemListView *lvwItems;
    SplitBar *picVerticalSplit;
    cToolbarHost *cToolbarHost1;
    cToolbar *tlbBrowser;
    BrowserPane *WebBrowser1;
    StatusBar *stabPrinc;
    ProgressBar *prbChargement;
    RebarBands m_bands;
    MainMenus m_menus;
    Commands m_commands;

    PageWriter m_pages;
    WindowForReading m_windowForReading;
    ReadingPane m_reading;
    WindowForEngine m_windowForEngine;
    FeedOpener m_opener;
    UpdateScheduler m_scheduler;
    TreeCommands m_treeCommands;
    std::unique_ptr<BrowserToolbar> m_browserToolbar;
    InstanceServer m_server;
    std::unique_ptr<frmSysTray> m_frmSysTray;
    std::unique_ptr<frmUpdate> m_frmUpdate; ///< made for the first announcement
    bool m_loaded = false;
    bool m_iconic = false; ///< hidden because it was minimised
    bool m_unloaded = false;
};

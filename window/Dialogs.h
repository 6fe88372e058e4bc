#pragma once

#include "core/DataDirectory.h"
#include "core/FeedTree.h"
#include "dialogs/HelpSystem.h"
#include "dialogs/frmOptions.h"
#include "exchange/ImportRun.h"
#include "platform/Waiting.h"

#include <QString>

#include <functional>
#include <memory>

class Downloader;
class Messages;
class QWidget;
class clsDES;
struct AppSettings;
struct CurrentFeed;
struct FeedTables;

/// Opens the dialogs of the program, each made for one modal showing over the main window.
class Dialogs
{
public:
    /// What the dialogs work with. Nothing is owned, all functions must be set.
    struct Needs
    {
        QWidget *frame; ///< the window that they lie over
        Messages &messages;
        DataDirectory directory;
        AppSettings &settings;
        CurrentFeed &current;
        FeedTables &tables;
        clsDES &cipher;
        std::function<FeedNodePtr()> selectedNode; ///< of the feed tree; null when nothing is selected

        // The address box, and where addresses go.
        std::function<QString()> addressText;
        std::function<void(const QString &text)> setAddressText;
        std::function<void()> LoadFile; ///< opens through the network what the address box holds
        std::function<void(const QString &url)> navigate;
        std::function<void(const QString &url)> openInSystemBrowser;

        ImportRun::AddFeed AddFeed;
        std::function<std::unique_ptr<Downloader>()> makeDownloader;
        std::function<std::unique_ptr<HelpSystem>()> makeHelp; ///< called for the first request
        frmOptions::RunAtStartup runAtStartup;
        Wait wait;
    };

    explicit Dialogs(Needs needs);

    void showOptions();
    void showSearchDialog(int tab);
    void showImport();
    void showExport();
    void showHelp();
    void showAbout();

    /// Does nothing when no feed is loaded. Throws as frmProprietes::fillFrom().
    void showFeedProperties();

    void showMailDialog(const QString &text);
    void showAuthentication();

private:
    void setCredentials(const QString &username, const QString &password);

    Needs m_needs;
    std::unique_ptr<HelpSystem> m_help;
};

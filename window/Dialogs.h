#pragma once

#include "dialogs/HelpSystem.h"
#include "dialogs/frmImport.h"
#include "dialogs/frmOptions.h"
#include "platform/Waiting.h"

#include <QString>

#include <functional>
#include <memory>

class MainWindow;
class Messages;

/// Opens the dialogs of the program, each made for one modal showing over the main window.
class Dialogs
{
public:
    /// What the dialogs need besides the main window. Nothing is owned.
    struct Outside
    {
        Messages &messages;
        Wait wait;
        frmImport::MakeDownloader makeDownloader;
        frmOptions::RunAtStartup runAtStartup;
        std::function<std::unique_ptr<HelpSystem>()> makeHelp; ///< called for the first request
        QString searchEndpointsFile;                           ///< see SearchEndpoints::configured()
        QString helpFile;                                      ///< the application's help file
    };

    Dialogs(MainWindow &window, Outside outside);

    void showOptions();
    void showSearchDialog(int tab);
    void showImport();
    void showExport();
    void showHelp();
    void showAbout();
    void showFeedProperties();
    void showMailDialog(const QString &text);
    void showAuthentication();

private:
    MainWindow &m_window;
    Outside m_outside;
    std::unique_ptr<HelpSystem> m_help;
};

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "dialogs/HelpSystem.h"
#include "dialogs/frmOptions.h"
#include "exchange/ImportRun.h"
#include "platform/Waiting.h"
#include "window/HelpKey.h"

#include <QString>

#include <functional>
#include <memory>
#include <optional>

class Downloader;
class FeedOpening;
class Messages;
class QWidget;
class ReadingSide;
struct LongLived;

/// Opens the dialogs of the program, each made for one modal showing over the main window.
class Dialogs
{
public:
    /// What the dialogs need of the world outside. All functions must be set.
    struct Outside
    {
        std::function<std::unique_ptr<Downloader>()> makeDownloader;
        std::function<std::unique_ptr<HelpSystem>()> makeHelp; ///< called for the first request
        frmOptions::RunAtStartup runAtStartup;
        Wait wait;
        std::function<bool()> isEndAsked = [] { return false; }; ///< of the process; a mail is given up for it
    };

    /// What the dialogs need of the main window. Nothing is owned.
    struct Parts
    {
        QWidget &form; ///< they lie over it
        const LongLived &longLived;
        Messages &messages;
        FeedOpening &opening;
        ReadingSide &reading;
        std::function<void(const QString &url)> openInSystemBrowser;
        ImportRun::AddFeed AddFeed;
        std::function<void(const QString &text)> setStatusText;
    };

    Dialogs(Parts parts, Outside outside);

    void showOptions();
    void showSearchDialog(int tab);

    /// With a path the wizard goes straight to that file's feeds.
    void showImport(const QString &path = {});
    void showExport();

    /// The table of contents, or the page of a topic's number. F1 in a dialog shows the dialog's own.
    void showHelp(std::optional<qint32> topic = std::nullopt);
    void showAbout();

    /// Does nothing when no feed is loaded, nor when it is one of the tree and nothing is selected there.
    void showFeedProperties();

    /// What goes beyond the usual rules, for who asks for it.
    void showExtensions();

    void showMailDialog(const QString &text);
    void showAuthentication();

private:
    QString file(const QString &name) const;
    std::function<void(const QString &username, const QString &password)> credentialsSetter();
    std::function<void()> loader();

    Parts m_parts;
    Outside m_outside;
    std::unique_ptr<HelpSystem> m_help;
    HelpKey m_helpKey;
};

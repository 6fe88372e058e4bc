// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QHash>
#include <QObject>
#include <QString>

#include <functional>

class Dialogs;
class FeedTreeState;
class MainFrame;
class ReadingPane;
class TreeCommands;
class UpdateScheduler;
class cPopupMenu;

/// What the entries of the menus and the buttons of the main toolbar do.
class MainCommands : public QObject
{
    Q_OBJECT

public:
    /// What it works with. Nothing is owned.
    struct Parts
    {
        MainFrame &frame;
        Dialogs &dialogs;
        ReadingPane &reading;
        TreeCommands &treeCommands;
        const FeedTreeState &treeState;
        UpdateScheduler &scheduler;
        std::function<void()> quit;
        std::function<void()> addFeedOnShow; ///< subscribes to the feed on show
        std::function<void(const QString &url)> openInSystemBrowser;
    };

    explicit MainCommands(Parts parts, QObject *parent = nullptr);

private:
    void addWindowCommands();
    void addDialogCommands();
    void addItemAndTreeCommands();
    void add(const char16_t *key, const std::function<void()> &action);
    void connectMenu(cPopupMenu &menu);
    void handleButton(int index);
    void handleColumnEntry(int index);

    Parts m_parts;
    QHash<QString, std::function<void()>> m_actions; ///< by the key of the entry; one without an action does nothing
};

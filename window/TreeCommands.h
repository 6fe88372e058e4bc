// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "core/FeedTree.h"

#include <QObject>
#include <QPoint>
#include <QString>

#include <functional>

class FeedCatalogue;
class FeedOpener;
class FeedTreeState;
class MainFrame;
class Messages;

/// What the user's doings in the feed tree lead to: opening, enabling, deleting, new folders and moves.
class TreeCommands : public QObject
{
    Q_OBJECT

public:
    /// Asks for a text; "" when the user cancels.
    using InputBox = std::function<QString(const QString &prompt, const QString &title)>;

    /// What it works with. Nothing is owned.
    struct Parts
    {
        FeedTree &tree;
        FeedTreeState &treeState;
        FeedCatalogue &catalogue;
        FeedOpener &opener;
        MainFrame &frame;
        Messages &messages;
        InputBox inputBox;
        QString homePage; ///< path of home.htm
    };

    explicit TreeCommands(Parts parts, QObject *parent = nullptr);

    /// A folder only after a question, a feed without one; any other node isn't deleted, nor is a null one. Throws as
    /// FeedCatalogue.
    void deleteSelectedNode(const FeedNodePtr &node);

    /// Asks for a name and makes a folder beside a feed, otherwise below the node. Does nothing for a null node. Throws
    /// as FeedCatalogue.
    void createFolder(const FeedNodePtr &node);

private:
    void handleNodeClick(const FeedNodePtr &node);
    void handleNodeRightClick(const FeedNodePtr &node, const QPoint &globalPosition);
    void handleDrop(const FeedNodePtr &target, bool insertAbove);
    void enableButtons(const FeedNodePtr &node);
    void disableSendMail();

    Parts m_parts;
};

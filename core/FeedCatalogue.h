// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "core/DataDirectory.h"
#include "core/FeedTables.h"
#include "core/FeedTree.h"
#include "platform/Waiting.h"

#include <QString>

#include <vector>

class FeedTreeState;
class XmlDocument;
class XmlNode;
class clsDES;

/// The user's subscriptions: feeds.xml, which holds their structure for good, and its image in memory, the tree and the
/// per-feed tables. Each change loads the file afresh, edits and saves it in one step; nothing is kept open between
/// them.
///
/// What fails raises a RunTimeError, which ends the program. The order of the steps is fixed, so that the error of a
/// damaged file may come when the tree was changed and the file was not: the next start shows what the file holds.
class FeedCatalogue
{
public:
    /// `treeState` is that of `tree`. Nothing is owned.
    FeedCatalogue(DataDirectory directory, FeedTree &tree, FeedTreeState &treeState, clsDES &cipher, Clock clock);
    FeedCatalogue(const FeedCatalogue &) = delete;
    FeedCatalogue &operator=(const FeedCatalogue &) = delete;

    FeedTables tables;

    /// Fills tree and tables from the file. A file that is missing or broken raises the error of the missing root.
    void loadCatalogue();

    /// What AddFeed knows of a new feed.
    struct NewFeed
    {
        QString title;
        QString ttl; ///< minutes as the feed proposes them; "" stands for "60"
        QString address;
        QString username; ///< credentials are stored only when both are there
        QString password;
    };

    /// Adds a feed under the folder that the tree's selection decides: nothing or the root selected, the first node; a
    /// feed, its parent; a folder, that folder; a feed being updated, no parent and so a run-time error. Writes the
    /// file, fills the tables (not those of the credentials: these come with the next start), copies tmp.xml to the
    /// cache file. The cache file's bytes are on the disk before the catalogue names the feed, so that a full disk
    /// leaves both as they were; a missing tmp.xml is found at the end, as the last step.
    void addFeed(const NewFeed &feed);

    /// Removes the folder's element with all that it holds, and the cache files of its feeds. The nodes stay; the
    /// caller deletes them. A feed being updated is passed over: its cache file stays.
    void deleteCatalogueFolder(const FeedNodePtr &folder);

    /// Removes the feed's element, then its cache file.
    void deleteCatalogueFeed(const QString &key);

    /// Adds a folder called `name`: beside `node` when it is a feed, otherwise below it.
    void createFolder(const FeedNodePtr &node, const QString &name);

    /// Moves the feed `dragged` to `target`. On a feed the file always takes the place before the target, while the
    /// tree follows `insertAbove`: catalogues are kept in the order that such moves have left in them, and the two
    /// agree again at the next start. Ignored when the target is null or has the dragged key, or when what is dragged
    /// is no feed. A drop on a feed right under the root raises a run-time error after the tree was changed.
    void moveFeed(const FeedNodePtr &dragged, const FeedNodePtr &target, bool insertAbove);

    /// Writes tables and folding into the file. A file that doesn't load is left alone without a word.
    void saveCatalogueState();

    /// The key that the next new node will get.
    qint16 nextKey() const { return m_nextKey; }

    /// The text that enciphers the password of the feed with that key.
    static QString cipherKey(const QString &feedKey);

    /// The first element below `start`, in document order, with that key; feeds aren't entered. Null when there is
    /// none.
    static XmlNode findCatalogueNode(const QString &key, const XmlNode &start);

private:
    void walkLoad(const XmlNode &element, const FeedNodePtr &parent);
    void loadFolder(const XmlNode &element, const FeedNodePtr &parent);
    void loadFeed(const XmlNode &element, const FeedNodePtr &parent);
    void walkSave(const XmlNode &element);
    void saveFeed(XmlNode element) const;
    XmlDocument loadFile() const;
    void takeKey(const QString &key);
    void nextFreeKey();

    DataDirectory m_directory;
    FeedTree &m_tree;
    FeedTreeState &m_treeState;
    clsDES &m_cipher;
    Clock m_clock;
    std::vector<qint16> m_usedKeys;
    qint16 m_nextKey = 0;
};

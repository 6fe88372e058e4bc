// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QAbstractItemModel>
#include <QHash>
#include <QString>

#include <memory>
#include <vector>

/// The kind of a node is told by its image index alone.
namespace NodeImage {
constexpr int Gone = 0; ///< a node that was deleted from the tree: neither folder nor feed
constexpr int Folder = 2;
constexpr int Feed = 3;
constexpr int FeedUpdating =
    4; ///< neither folder nor feed while its update runs: nothing opens, moves or deletes it then
constexpr int Root = 5;
} // namespace NodeImage

class FeedTree;
class FeedNode;

/// A handle to a node that outlives the node's stay in the tree: what is deleted in the middle of a wait stays readable
/// and counts as NodeImage::Gone.
using FeedNodePtr = std::shared_ptr<FeedNode>;

/// One node of the feed tree. Changed through FeedTree only, but for the tag.
class FeedNode : public std::enable_shared_from_this<FeedNode>
{
public:
    QString key() const { return m_key; }
    QString text() const { return m_text; }
    int image() const { return m_image; }
    int selectedImage() const { return m_selectedImage; }  ///< -1: the same as image()
    FeedNodePtr parent() const { return m_parent.lock(); } ///< null for the root and for a node out of the tree
    const std::vector<FeedNodePtr> &children() const { return m_children; }

    QString tag; ///< a feed's address

private:
    friend class FeedTree;
    QString m_key;
    QString m_text;
    int m_image = NodeImage::Gone;
    int m_selectedImage = -1;
    std::weak_ptr<FeedNode> m_parent;
    std::vector<FeedNodePtr> m_children;
};

/// The tree of root, folders and feeds: nodes with unique keys, as the model of whoever shows it. What is selected or
/// open stands apart, in FeedTreeState.
class FeedTree final : public QAbstractItemModel
{
    Q_OBJECT

public:
    explicit FeedTree(QObject *parent = nullptr);
    ~FeedTree() override;

    /// The first node of the tree, the root; null while the tree is empty.
    FeedNodePtr root() const;

    /// The node with that key; null when there is none. Constant in time.
    FeedNodePtr find(const QString &key) const;

    /// Adds the root node. Throws RunTimeError::keyNotUnique() when the key is taken.
    FeedNodePtr addRoot(const QString &key, const QString &text, int image);

    /// Adds a node as last child. Throws objectNotSet() for a null parent, keyNotUnique() when the key is taken.
    FeedNodePtr addChild(const FeedNodePtr &parent, const QString &key, const QString &text, int image);

    /// Adds a node beside `target`, before or after it, under the same parent. Throws as addChild().
    FeedNodePtr addBeside(const FeedNodePtr &target, bool before, const QString &key, const QString &text, int image);

    /// Takes the node and all below it out of the tree. Their handles then say NodeImage::Gone. Does nothing for a null
    /// or gone node.
    void remove(const FeedNodePtr &node);

    /// Sets image and selected image. Does nothing for a node that is gone.
    void setImages(const FeedNodePtr &node, int image, int selectedImage);

    FeedNodePtr node(const QModelIndex &index) const;
    QModelIndex indexOf(const FeedNodePtr &node) const;

    // The model's side. The decoration of an item is its image index, as a number under ImageRole.
    enum Role { ImageRole = Qt::UserRole + 1 };
    QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    QModelIndex parent(const QModelIndex &child) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;

Q_SIGNALS:
    /// Before a node goes with all below it, while they are still in the tree.
    void aboutToBeRemoved(const FeedNodePtr &node);

private:
    FeedNodePtr insert(const FeedNodePtr &parent, std::size_t place, const QString &key, const QString &text,
                       int image);
    void forget(const FeedNodePtr &node);

    FeedNodePtr m_root;
    QHash<QString, FeedNodePtr> m_byKey;
};

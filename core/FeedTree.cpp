// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/FeedTree.h"

#include "platform/Literals.h"
#include "platform/RunTimeError.h"

#include <algorithm>

namespace {

std::size_t placeIn(const std::vector<FeedNodePtr> &siblings, const FeedNode *node)
{
    const auto found = std::find_if(siblings.begin(), siblings.end(),
                                    [node](const FeedNodePtr &sibling) { return sibling.get() == node; });
    return static_cast<std::size_t>(found - siblings.begin());
}

/// The name of a node with what its picture shows.
QString spoken(const FeedNode &node)
{
    switch (node.image()) {
    case NodeImage::Folder:
        return node.text() + u", dossier"_s;
    case NodeImage::Feed:
        return node.text() + u", flux"_s;
    case NodeImage::FeedUpdating:
        return node.text() + u", flux, mise à jour en cours"_s;
    default:
        return node.text();
    }
}

bool isGone(const FeedNodePtr &node)
{
    return !node || node->image() == NodeImage::Gone;
}

} // namespace

FeedTree::FeedTree(QObject *parent) : QAbstractItemModel(parent) {}

FeedTree::~FeedTree() = default;

FeedNodePtr FeedTree::root() const
{
    return m_root;
}

FeedNodePtr FeedTree::find(const QString &key) const
{
    return m_byKey.value(key);
}

FeedNodePtr FeedTree::addRoot(const QString &key, const QString &text, int image)
{
    if (m_root)
        throw RunTimeError::keyNotUnique();
    return insert(nullptr, 0, key, text, image);
}

FeedNodePtr FeedTree::addChild(const FeedNodePtr &parent, const QString &key, const QString &text, int image)
{
    if (isGone(parent))
        throw RunTimeError::objectNotSet();
    return insert(parent, parent->m_children.size(), key, text, image);
}

FeedNodePtr FeedTree::addBeside(const FeedNodePtr &target, bool before, const QString &key, const QString &text,
                                int image)
{
    const FeedNodePtr parent = target ? target->parent() : nullptr;
    if (!parent)
        throw RunTimeError::objectNotSet();
    return insert(parent, placeIn(parent->m_children, target.get()) + (before ? 0 : 1), key, text, image);
}

FeedNodePtr FeedTree::insert(const FeedNodePtr &parent, std::size_t place, const QString &key, const QString &text,
                             int image)
{
    if (m_byKey.contains(key))
        throw RunTimeError::keyNotUnique();
    auto node = std::make_shared<FeedNode>();
    node->m_key = key;
    node->m_text = text;
    node->m_image = image;
    node->m_parent = parent;

    const int row = static_cast<int>(place);
    beginInsertRows(indexOf(parent), row, row);
    if (parent)
        parent->m_children.insert(parent->m_children.begin() + row, node);
    else
        m_root = node;
    m_byKey.insert(key, node);
    endInsertRows();
    return node;
}

void FeedTree::remove(const FeedNodePtr &node)
{
    if (isGone(node))
        return;
    // A copy: the argument may be a reference into the list of children.
    const FeedNodePtr kept = node; // NOLINT(performance-unnecessary-copy-initialization)
    Q_EMIT aboutToBeRemoved(kept);
    const FeedNodePtr parent = kept->parent();
    const int row = parent ? static_cast<int>(placeIn(parent->m_children, kept.get())) : 0;
    beginRemoveRows(indexOf(parent), row, row);
    if (parent)
        parent->m_children.erase(parent->m_children.begin() + row);
    else
        m_root.reset();
    forget(kept);
    endRemoveRows();
}

void FeedTree::forget(const FeedNodePtr &node)
{
    m_byKey.remove(node->m_key);
    node->m_image = NodeImage::Gone;
    node->m_selectedImage = -1;
    node->m_parent.reset();
    for (const FeedNodePtr &child : node->m_children)
        forget(child);
    node->m_children.clear();
}

void FeedTree::setImages(const FeedNodePtr &node, int image, int selectedImage)
{
    if (isGone(node))
        return;
    node->m_image = image;
    node->m_selectedImage = selectedImage;
    const QModelIndex index = indexOf(node);
    Q_EMIT dataChanged(index, index, {ImageRole, Qt::AccessibleTextRole});
}

FeedNodePtr FeedTree::node(const QModelIndex &index) const
{
    return index.isValid() ? static_cast<FeedNode *>(index.internalPointer())->shared_from_this() : nullptr;
}

QModelIndex FeedTree::indexOf(const FeedNodePtr &node) const
{
    if (isGone(node))
        return {};
    const FeedNodePtr parent = node->parent();
    const int row = parent ? static_cast<int>(placeIn(parent->m_children, node.get())) : 0;
    return createIndex(row, 0, node.get());
}

QModelIndex FeedTree::index(int row, int column, const QModelIndex &parent) const
{
    if (!hasIndex(row, column, parent))
        return {};
    const FeedNodePtr above = node(parent);
    return createIndex(row, column, (above ? above->m_children[static_cast<std::size_t>(row)] : m_root).get());
}

QModelIndex FeedTree::parent(const QModelIndex &child) const
{
    const FeedNodePtr below = node(child);
    return below ? indexOf(below->parent()) : QModelIndex();
}

int FeedTree::rowCount(const QModelIndex &parent) const
{
    if (parent.column() > 0)
        return 0;
    const FeedNodePtr above = node(parent);
    return above ? static_cast<int>(above->m_children.size()) : (m_root ? 1 : 0);
}

int FeedTree::columnCount(const QModelIndex &) const
{
    return 1;
}

QVariant FeedTree::data(const QModelIndex &index, int role) const
{
    const FeedNodePtr shown = node(index);
    if (!shown)
        return {};
    switch (role) {
    case Qt::DisplayRole:
        return shown->text();
    case Qt::AccessibleTextRole:
        return spoken(*shown);
    case ImageRole:
        return shown->image();
    default:
        return {};
    }
}

Qt::ItemFlags FeedTree::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled | Qt::ItemIsDropEnabled;
}

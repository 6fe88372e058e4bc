// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <memory>
#include <optional>
#include <vector>

class XmlDocument;
struct XmlTree;

/// One node of an XmlDocument: a light handle that may be copied. It keeps its document's memory alive. A null node
/// stands for "not found"; every operation on it that isn't marked as safe throws RunTimeError::objectNotSet().
class XmlNode
{
public:
    XmlNode() = default;

    bool isNull() const { return m_node == nullptr; }
    explicit operator bool() const { return !isNull(); }

    bool isElement() const;

    /// The qualified name of an element, "#text", "#comment", "#cdata-section" and the like for other kinds.
    QString nodeName() const;

    /// All text below the node, entities and CDATA resolved.
    QString text() const;

    /// The children in order. Text of white space alone counts as layout and isn't among them.
    std::vector<XmlNode> childNodes() const;

    /// The element around the node; null for the document element.
    XmlNode parentNode() const;

    /// The first child element of that qualified name; null when there is none. A path "a/b" goes down by steps.
    XmlNode selectSingleNode(const QString &path) const;

    /// All child elements of that qualified name, in order.
    std::vector<XmlNode> selectNodes(const QString &name) const;

    /// The attribute's value; nothing when the element doesn't bear it (also for a node that is no element).
    std::optional<QString> attribute(const QString &name) const;

    /// The attribute's value. Throws RunTimeError::objectNotSet() when it is missing.
    QString requiredAttribute(const QString &name) const;

    /// Sets the attribute; a new one goes behind the others, one that is there keeps its place.
    /// Characters that XML can't hold are left out.
    void setAttribute(const QString &name, const QString &value);

    /// Adds `child` (an element made by the same document, or one taken out of it) behind the other children.
    void appendChild(const XmlNode &child);

    /// Puts `child` before `reference`, a child of this node.
    void insertBefore(const XmlNode &child, const XmlNode &reference);

    /// Puts `child` in the place of `old`, a child of this node.
    void replaceChild(const XmlNode &child, const XmlNode &old);

    /// Takes `child` out. It stays usable as long as a handle to the document lives.
    void removeChild(const XmlNode &child);

    /// The node serialised as XML, without declaration.
    QString xml() const;

private:
    friend class XmlDocument;
    XmlNode(std::shared_ptr<XmlTree> tree, void *node);
    XmlNode sibling(void *node) const;
    void *required() const;

    std::shared_ptr<XmlTree> m_tree;
    void *m_node = nullptr;
};

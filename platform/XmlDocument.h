#pragma once

#include <QByteArray>
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
    bool operator==(const XmlNode &other) const { return m_node == other.m_node; }

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

/// An XML document held in memory as a tree, read strictly: what isn't well-formed isn't loaded. Reading never touches
/// the network or another file; entity expansion, depth and the size of one text are bounded (those of libxml2).
/// Names are told by qualified name. White space, comments, unknown content, order and encoding survive a save.
class XmlDocument
{
public:
    enum class LoadResult { Loaded, Absent, Unreadable, Malformed };

    XmlDocument();

    /// Replaces the content by that of the file; anything but Loaded leaves the document empty.
    LoadResult load(const QString &path);

    /// Likewise from bytes in memory, with their own declared encoding or a byte-order mark.
    LoadResult loadXml(const QByteArray &bytes);

    /// Likewise from a text.
    LoadResult loadXml(const QString &text);

    /// Replaces the file in one step, in the document's encoding. Throws the RunTimeErrors of Files::write(). A
    /// document without an element is written as nothing but its declaration.
    void save(const QString &path) const;

    /// What save() writes.
    QByteArray toBytes() const;

    /// The document element if it has that qualified name, or what a path "root/child" leads to; null otherwise.
    XmlNode selectSingleNode(const QString &path) const;

    /// The document element; null when the document is empty.
    XmlNode documentElement() const;

    /// A new element of this document, not yet placed in it.
    XmlNode createElement(const QString &name);

    /// A deep copy of a node of another document, not yet placed in this one.
    XmlNode importNode(const XmlNode &node);

private:
    std::shared_ptr<XmlTree> m_tree;
};

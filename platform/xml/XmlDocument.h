// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/xml/XmlNode.h"

#include <QByteArray>

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

    /// Replaces the file in one step, in the document's encoding. Throws the RunTimeErrors of Files::write(), and
    /// RunTimeError::deviceError() when what was written doesn't read back the same; the old file then stands
    /// unchanged. A document without an element is written as nothing but its declaration.
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

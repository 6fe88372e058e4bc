// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/xml/XmlDocument.h"

#include "platform/Files.h"
#include "platform/RunTimeError.h"
#include "platform/xml/XmlTree.h"

/// Files of this program and lists of others: what stands in them is kept as it stands, also what isn't known.
static constexpr XmlBounds bounds{.undeclaredEntitiesAreRefused = false,
                                  .namespaceErrorsAreRefused = false,
                                  .undeclaredPrefixesAreBound = false,
                                  .namespaceDefaultsAreKept = true};

XmlDocument::XmlDocument() : m_tree(std::make_shared<XmlTree>())
{
    m_tree->document.reset(xmlNewDoc(xmlChars("1.0")));
}

XmlDocument::LoadResult XmlDocument::load(const QString &path)
{
    *this = XmlDocument();
    const Files::Content content = Files::read(path);
    if (content.result == Files::ReadResult::Absent)
        return LoadResult::Absent;
    if (content.result == Files::ReadResult::Unreadable)
        return LoadResult::Unreadable;
    return loadXml(content.bytes);
}

XmlDocument::LoadResult XmlDocument::loadXml(const QByteArray &bytes)
{
    *this = XmlDocument();
    XmlDocPtr document = XmlGate::parse(bytes, bounds);
    if (!document)
        return LoadResult::Malformed;
    m_tree->document = std::move(document);
    return LoadResult::Loaded;
}

XmlDocument::LoadResult XmlDocument::loadXml(const QString &text)
{
    *this = XmlDocument();
    XmlDocPtr document = XmlGate::parse(text.toUtf8(), bounds, "UTF-8");
    if (!document)
        return LoadResult::Malformed;
    m_tree->document = std::move(document);
    return LoadResult::Loaded;
}

void XmlDocument::save(const QString &path) const
{
    Files::write(path, toBytes());
}

QByteArray XmlDocument::toBytes() const
{
    return XmlGate::toBytes(m_tree->document.get(), bounds);
}

XmlNode XmlDocument::selectSingleNode(const QString &path) const
{
    return {m_tree, xmlElementAt(reinterpret_cast<xmlNode *>(m_tree->document.get()), path)};
}

XmlNode XmlDocument::documentElement() const
{
    return {m_tree, xmlDocGetRootElement(m_tree->document.get())};
}

XmlNode XmlDocument::createElement(const QString &name)
{
    xmlNode *node = xmlNewDocNode(m_tree->document.get(), nullptr, xmlChars(name.toUtf8()), nullptr);
    m_tree->outside.push_back(node);
    return {m_tree, node};
}

XmlNode XmlDocument::importNode(const XmlNode &node)
{
    xmlNode *copy =
        XmlGate::copyInto(reinterpret_cast<xmlNode *>(m_tree->document.get()), static_cast<xmlNode *>(node.required()));
    if (copy == nullptr)
        throw RunTimeError::invalidCall();
    m_tree->outside.push_back(copy);
    return {m_tree, copy};
}

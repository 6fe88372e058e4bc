// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/xml/XmlNode.h"

#include "platform/Literals.h"
#include "platform/RunTimeError.h"
#include "platform/xml/XmlCharacters.h"
#include "platform/xml/XmlTree.h"

#include <QList>

namespace {

QString text(const xmlChar *utf8)
{
    return QString::fromUtf8(reinterpret_cast<const char *>(utf8));
}

QString takeText(xmlChar *utf8)
{
    const QString result = text(utf8);
    xmlFree(utf8);
    return result;
}

xmlNode *raw(void *node)
{
    return static_cast<xmlNode *>(node);
}

bool hasQualifiedName(const xmlChar *local, const xmlNs *ns, QByteArrayView wanted)
{
    const auto same = [](const xmlChar *a, QByteArrayView b) {
        return QByteArrayView(reinterpret_cast<const char *>(a)) == b;
    };
    if (ns == nullptr || ns->prefix == nullptr)
        return same(local, wanted);
    const qsizetype colon = wanted.indexOf(':');
    return colon >= 0 && same(ns->prefix, wanted.first(colon)) && same(local, wanted.sliced(colon + 1));
}

xmlAttr *findAttribute(const xmlNode *element, const QString &name)
{
    const QByteArray wanted = name.toUtf8();
    if (element->type == XML_ELEMENT_NODE)
        for (xmlAttr *attribute = element->properties; attribute != nullptr; attribute = attribute->next)
            if (hasQualifiedName(attribute->name, attribute->ns, wanted))
                return attribute;
    return nullptr;
}

xmlNode *firstChildElement(const xmlNode *parent, QByteArrayView name)
{
    for (xmlNode *child = parent->children; child != nullptr; child = child->next)
        if (child->type == XML_ELEMENT_NODE && hasQualifiedName(child->name, child->ns, name))
            return child;
    return nullptr;
}

} // namespace

xmlNode *xmlElementAt(xmlNode *node, const QString &path)
{
    const QList<QByteArray> steps = path.toUtf8().split('/');
    for (const QByteArray &step : steps) {
        node = firstChildElement(node, step);
        if (node == nullptr)
            return nullptr;
    }
    return node;
}

XmlNode::XmlNode(std::shared_ptr<XmlTree> tree, void *node) : m_tree(std::move(tree)), m_node(node)
{
    if (m_node == nullptr)
        m_tree.reset();
}

XmlNode XmlNode::sibling(void *node) const
{
    return {m_tree, node};
}

void *XmlNode::required() const
{
    if (m_node == nullptr)
        throw RunTimeError::objectNotSet();
    return m_node;
}

bool XmlNode::isElement() const
{
    return m_node != nullptr && raw(m_node)->type == XML_ELEMENT_NODE;
}

QString XmlNode::nodeName() const
{
    const xmlNode *node = raw(required());
    switch (node->type) {
    case XML_ELEMENT_NODE:
        return node->ns != nullptr && node->ns->prefix != nullptr
                   ? QString(::text(node->ns->prefix) + u':' + ::text(node->name))
                   : ::text(node->name);
    case XML_TEXT_NODE:
        return u"#text"_s;
    case XML_CDATA_SECTION_NODE:
        return u"#cdata-section"_s;
    case XML_COMMENT_NODE:
        return u"#comment"_s;
    default:
        return node->name != nullptr ? ::text(node->name) : QString();
    }
}

QString XmlNode::text() const
{
    return takeText(xmlNodeGetContent(raw(required())));
}

std::vector<XmlNode> XmlNode::childNodes() const
{
    std::vector<XmlNode> children;
    for (xmlNode *child = raw(required())->children; child != nullptr; child = child->next)
        if (xmlIsBlankNode(child) == 0)
            children.push_back(sibling(child));
    return children;
}

XmlNode XmlNode::parentNode() const
{
    xmlNode *parent = raw(required())->parent;
    return sibling(parent != nullptr && parent->type == XML_ELEMENT_NODE ? parent : nullptr);
}

XmlNode XmlNode::selectSingleNode(const QString &path) const
{
    return sibling(xmlElementAt(raw(required()), path));
}

std::vector<XmlNode> XmlNode::selectNodes(const QString &name) const
{
    std::vector<XmlNode> found;
    const QByteArray wanted = name.toUtf8();
    for (xmlNode *child = raw(required())->children; child != nullptr; child = child->next)
        if (child->type == XML_ELEMENT_NODE && hasQualifiedName(child->name, child->ns, wanted))
            found.push_back(sibling(child));
    return found;
}

std::optional<QString> XmlNode::attribute(const QString &name) const
{
    const xmlAttr *found = findAttribute(raw(required()), name);
    if (found == nullptr)
        return std::nullopt;
    return takeText(xmlNodeListGetString(raw(m_node)->doc, found->children, 1));
}

QString XmlNode::requiredAttribute(const QString &name) const
{
    const std::optional<QString> value = attribute(name);
    if (!value)
        throw RunTimeError::objectNotSet();
    return *value;
}

void XmlNode::setAttribute(const QString &name, const QString &value)
{
    xmlNode *element = raw(required());
    if (element->type != XML_ELEMENT_NODE)
        throw RunTimeError::objectNotSet();
    const xmlAttr *found = findAttribute(element, name);
    if (found != nullptr)
        xmlSetNsProp(element, found->ns, found->name, xmlChars(withoutWhatXmlCannotHold(value).toUtf8()));
    else
        xmlSetProp(element, xmlChars(name.toUtf8()), xmlChars(withoutWhatXmlCannotHold(value).toUtf8()));
}

void XmlNode::appendChild(const XmlNode &child)
{
    xmlNode *parent = raw(required());
    xmlNode *node = raw(child.required());
    m_tree->takeIn(node);
    xmlAddChild(parent, node);
}

void XmlNode::insertBefore(const XmlNode &child, const XmlNode &reference)
{
    xmlNode *node = raw(child.required());
    xmlNode *before = raw(reference.required());
    if (before->parent != raw(required()))
        throw RunTimeError::invalidCall();
    m_tree->takeIn(node);
    xmlAddPrevSibling(before, node);
}

void XmlNode::replaceChild(const XmlNode &child, const XmlNode &old)
{
    insertBefore(child, old);
    removeChild(old);
}

void XmlNode::removeChild(const XmlNode &child)
{
    xmlNode *node = raw(child.required());
    if (node->parent != raw(required()))
        throw RunTimeError::invalidCall();
    m_tree->takeOut(node);
}

QString XmlNode::xml() const
{
    return XmlGate::toMarkup(raw(required()));
}

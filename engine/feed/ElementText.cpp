// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/ElementText.h"

#include "engine/feed/Elements.h"
#include "platform/Literals.h"
#include "platform/xml/XmlCharacters.h"

#include <array>
#include <string_view>

namespace {

/// A byte order mark at the beginning goes as well, as QString drops the first of several anyway.
QString trimmedUtf8(std::string_view text)
{
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    while (!text.empty()) {
        if (isXmlBlank(QLatin1Char(text.front())))
            text.remove_prefix(1);
        else if (text.substr(0, mark.size()) == mark)
            text.remove_prefix(mark.size());
        else
            break;
    }
    while (!text.empty() && isXmlBlank(QLatin1Char(text.back())))
        text.remove_suffix(1);
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QByteArray content(const xmlNode *node)
{
    xmlChar *text = xmlNodeGetContent(node);
    QByteArray result(reinterpret_cast<const char *>(text));
    xmlFree(text);
    return result;
}

void appendEscaped(QByteArray &out, std::string_view text, bool inAttribute)
{
    for (const char c : text) {
        if (c == '&')
            out += "&amp;";
        else if (c == '<')
            out += "&lt;";
        else if (c == '>')
            out += "&gt;";
        else if (c == '"' && inAttribute)
            out += "&quot;";
        else
            out += c;
    }
}

/// Markup as it stands, or with what only XML knows left out of it.
enum class Markup { Xml, Html };

void appendName(QByteArray &out, const xmlNs *ns, const xmlChar *name, Markup markup)
{
    if (markup == Markup::Xml && ns != nullptr && ns->prefix != nullptr)
        out.append(reinterpret_cast<const char *>(ns->prefix)).append(':');
    out.append(reinterpret_cast<const char *>(name));
}

/// Elements that HTML writes without an end tag. All others must have one: the markup is shown as HTML, where "<div/>"
/// opens an element.
bool isVoid(const xmlNode *element)
{
    static constexpr std::array<std::string_view, 12> names = {"area", "base",  "br",   "col",  "frame", "hr",
                                                               "img",  "input", "link", "meta", "param", "wbr"};
    for (const std::string_view name : names)
        if (viewOf(element->name) == name)
            return true;
    return false;
}

void appendStartTag(QByteArray &out, const xmlNode *element, Markup markup)
{
    out += '<';
    appendName(out, element->ns, element->name, markup);
    for (const xmlNs *ns = markup == Markup::Xml ? element->nsDef : nullptr; ns != nullptr; ns = ns->next) {
        out += ns->prefix == nullptr ? QByteArray(" xmlns") : " xmlns:" + QByteArray(viewOf(ns->prefix).data());
        out += "=\"";
        appendEscaped(out, viewOf(ns->href), true);
        out += '"';
    }
    for (const xmlAttr *attribute = element->properties; attribute != nullptr; attribute = attribute->next) {
        out += ' ';
        appendName(out, attribute->ns, attribute->name, markup);
        out += "=\"";
        appendEscaped(out, content(reinterpret_cast<const xmlNode *>(attribute)).constData(), true);
        out += '"';
    }
    if (element->children == nullptr && isVoid(element))
        out += '/';
    out += '>';
}

void appendEndTag(QByteArray &out, const xmlNode *element, Markup markup)
{
    if (element->children == nullptr && isVoid(element))
        return;
    out += "</";
    appendName(out, element->ns, element->name, markup);
    out += '>';
}

/// What stands between the tags of `parent`. Walks the tree without recursion: feeds choose their depth.
QByteArray innerMarkup(const xmlNode *parent, Markup markup = Markup::Xml)
{
    QByteArray out;
    const xmlNode *node = parent->children;
    while (node != nullptr) {
        if (node->type == XML_ELEMENT_NODE) {
            appendStartTag(out, node, markup);
            if (node->children != nullptr) {
                node = node->children;
                continue;
            }
            appendEndTag(out, node, markup);
        } else if (node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE) {
            appendEscaped(out, viewOf(node->content), false);
        }
        while (node != parent && node->next == nullptr) {
            node = node->parent;
            if (node != parent)
                appendEndTag(out, node, markup);
        }
        node = node == parent ? nullptr : node->next;
    }
    return out;
}

bool isText(const xmlNode *node)
{
    return node->type == XML_TEXT_NODE || node->type == XML_CDATA_SECTION_NODE;
}

bool holdsElement(const xmlNode *parent)
{
    for (const xmlNode *child = parent->children; child != nullptr; child = child->next)
        if (child->type == XML_ELEMENT_NODE)
            return true;
    return false;
}

/// A null `space` stands for no namespace.
bool isAttribute(const xmlAttr *attribute, std::string_view name, const char *space)
{
    if (viewOf(attribute->name) != name)
        return false;
    return space == nullptr ? attribute->ns == nullptr : nameOf(attribute->ns) == space;
}

const xmlAttr *findAttribute(const xmlNode *element, const char *name, const char *namespaceName)
{
    for (const xmlAttr *attribute = element->properties; attribute != nullptr; attribute = attribute->next)
        if (isAttribute(attribute, name, namespaceName))
            return attribute;
    return nullptr;
}

} // namespace

QString trimmedText(const QString &text)
{
    QStringView rest(text);
    while (!rest.isEmpty() && (isXmlBlank(rest.front()) || rest.front() == QChar::ByteOrderMark))
        rest = rest.sliced(1);
    while (!rest.isEmpty() && isXmlBlank(rest.back()))
        rest.chop(1);
    return rest.toString();
}

QString textOf(const xmlNode *element)
{
    if (element == nullptr || element->children == nullptr)
        return {};
    const xmlNode *child = element->children;
    if (child->next == nullptr && isText(child))
        return trimmedUtf8(viewOf(child->content));
    if (holdsElement(element))
        return trimmedUtf8(innerMarkup(element).toStdString());
    QByteArray text;
    for (; child != nullptr; child = child->next)
        if (isText(child))
            text += viewOf(child->content).data();
    return trimmedUtf8({text.constData(), static_cast<std::size_t>(text.size())});
}

QString atomTextOf(const xmlNode *element)
{
    if (element == nullptr)
        return {};
    if (attributeOf(element, "mode") != "base64"_L1)
        return textOf(element);
    return trimmedText(withoutWhatXmlCannotHold(QString::fromUtf8(QByteArray::fromBase64(content(element)))));
}

QString atomMarkupOf(const xmlNode *element)
{
    const QString mode = attributeOf(element, "mode");
    if (element == nullptr || mode == "base64"_L1 || mode == "escaped"_L1)
        return atomTextOf(element);
    return trimmedUtf8(innerMarkup(element).toStdString());
}

QString htmlMarkupOf(const xmlNode *element)
{
    return element == nullptr ? QString() : trimmedUtf8(innerMarkup(element, Markup::Html).toStdString());
}

QString bareTextOf(const xmlNode *element)
{
    return element == nullptr ? QString() : trimmedUtf8(content(element).toStdString());
}

QString attributeOf(const xmlNode *element, const char *name, const char *namespaceName)
{
    if (element == nullptr)
        return {};
    const xmlAttr *attribute = findAttribute(element, name, namespaceName);
    if (attribute == nullptr || attribute->children == nullptr)
        return {};
    if (attribute->children->next == nullptr && isText(attribute->children))
        return trimmedUtf8(viewOf(attribute->children->content));
    const QByteArray text = content(reinterpret_cast<const xmlNode *>(attribute));
    return trimmedUtf8({text.constData(), static_cast<std::size_t>(text.size())});
}

QString mediaTypeOf(const xmlNode *element)
{
    return trimmedText(attributeOf(element, "type").section(u';', 0, 0)).toLower();
}

// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/xml/EscapedDeclarations.h"

#include "platform/xml/DocumentNotes.h"
#include "platform/xml/TreeWalk.h"

#include <QString> // with it come the operators of QByteArray

#include <algorithm>
#include <cstring>

namespace {

bool isToEscape(char c)
{
    return c == '&' || c == '<' || c == '\t' || c == '\n' || c == '\r';
}

QByteArray escaped(const char *text)
{
    QByteArray result;
    for (; *text != 0; ++text) {
        if (*text == '&')
            result += "&amp;";
        else if (*text == '<')
            result += "&lt;";
        else if (isToEscape(*text))
            result += "&#" + QByteArray::number(*text) + ';';
        else
            result += *text;
    }
    return result;
}

} // namespace

bool mustBeEscaped(const xmlChar *text)
{
    const auto *chars = reinterpret_cast<const char *>(text);
    return chars != nullptr && std::any_of(chars, chars + std::strlen(chars), isToEscape);
}

EscapedDeclarations::EscapedDeclarations(xmlNode *top)
{
    if (DocumentNotes::of(*top->doc).addressesMustBeEscaped)
        escapeNamespaces(top);
}

EscapedDeclarations::EscapedDeclarations(xmlDoc *document)
{
    xmlNode *root = xmlDocGetRootElement(document);
    if (root != nullptr && DocumentNotes::of(*document).addressesMustBeEscaped)
        escapeNamespaces(root);
    if (document->intSubset != nullptr)
        escapeDefaults(document->intSubset);
}

EscapedDeclarations::~EscapedDeclarations()
{
    for (const Replaced &replaced : m_replaced)
        *replaced.place = replaced.text;
}

void EscapedDeclarations::escapeNamespaces(xmlNode *top)
{
    for (xmlNode *node = top; node != nullptr; node = nextInTree(node, top))
        if (node->type == XML_ELEMENT_NODE)
            for (xmlNs *ns = node->nsDef; ns != nullptr; ns = ns->next)
                escape(ns->href);
}

void EscapedDeclarations::escapeDefaults(xmlDtd *type)
{
    for (xmlNode *child = type->children; child != nullptr; child = child->next)
        if (child->type == XML_ATTRIBUTE_DECL)
            escape(reinterpret_cast<xmlAttribute *>(child)->defaultValue);
}

void EscapedDeclarations::escape(const xmlChar *&place)
{
    if (!mustBeEscaped(place))
        return;
    m_texts.push_back(escaped(reinterpret_cast<const char *>(place)));
    m_replaced.push_back({&place, place});
    place = reinterpret_cast<const xmlChar *>(m_texts.back().constData());
}

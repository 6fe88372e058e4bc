// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/xml/EscapedDeclarations.h"

#include "platform/xml/TreeWalk.h"

#include <QString> // with it come the operators of QByteArray

#include <algorithm>
#include <cstring>

namespace {

char addressesToEscape; ///< what the private pointer of such a document points to

bool mustBeEscaped(char c)
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
        else if (mustBeEscaped(*text))
            result += "&#" + QByteArray::number(*text) + ';';
        else
            result += *text;
    }
    return result;
}

} // namespace

bool AddressesToEscape::isOne(const xmlChar *address)
{
    const auto *text = reinterpret_cast<const char *>(address);
    return text != nullptr && std::any_of(text, text + std::strlen(text), mustBeEscaped);
}

void AddressesToEscape::note(xmlDoc *document)
{
    document->_private = &addressesToEscape;
}

bool AddressesToEscape::areIn(const xmlDoc *document)
{
    return document->_private == &addressesToEscape;
}

EscapedDeclarations::EscapedDeclarations(xmlNode *top)
{
    if (AddressesToEscape::areIn(top->doc))
        escapeNamespaces(top);
}

EscapedDeclarations::EscapedDeclarations(xmlDoc *document)
{
    xmlNode *root = xmlDocGetRootElement(document);
    if (root != nullptr && AddressesToEscape::areIn(document))
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
    if (!AddressesToEscape::isOne(place))
        return;
    m_texts.push_back(escaped(reinterpret_cast<const char *>(place)));
    m_replaced.push_back({&place, place});
    place = reinterpret_cast<const xmlChar *>(m_texts.back().constData());
}

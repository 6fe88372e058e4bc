// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>

#include <libxml/tree.h>

#include <deque>
#include <vector>

/// True for an address, or a default, that can't be written as it is in memory.
bool mustBeEscaped(const xmlChar *text);

/// The library (2.9.14) writes the addresses of namespaces and the defaults of attributes as they are in memory, but
/// for quotes. For the life of the object those that can't stand so are escaped in the tree.
class EscapedDeclarations final
{
public:
    explicit EscapedDeclarations(xmlNode *top);
    explicit EscapedDeclarations(xmlDoc *document);
    EscapedDeclarations(const EscapedDeclarations &) = delete;
    EscapedDeclarations &operator=(const EscapedDeclarations &) = delete;
    ~EscapedDeclarations();

private:
    struct Replaced
    {
        const xmlChar **place;
        const xmlChar *text;
    };

    void escapeNamespaces(xmlNode *top);
    void escapeDefaults(xmlDtd *type);
    void escape(const xmlChar *&place);

    std::deque<QByteArray> m_texts;
    std::vector<Replaced> m_replaced;
};

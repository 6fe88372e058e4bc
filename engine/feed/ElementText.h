// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

#include <libxml/tree.h>

/// What elements and attributes say, as text. A null pointer says "".

/// The text of an element, entities and CDATA resolved, trimmed. Elements inside it are kept as markup, which then
/// makes the whole markup: its ampersands stay escaped.
QString textOf(const xmlNode *element);

/// As textOf(), or the decoded bytes, read as UTF-8, when the element says mode="base64" (Atom 0.3).
QString atomTextOf(const xmlNode *element);

/// The same as markup: what an element holds that doesn't say how its text is encoded (mode="xml") is markup, and what
/// is escaped in it stays escaped.
QString atomMarkupOf(const xmlNode *element);

/// The markup of what the element holds, for a page of HTML: names without prefixes, no declarations of namespaces.
QString htmlMarkupOf(const xmlNode *element);

/// All that the element and those in it say, without markup, trimmed.
QString bareTextOf(const xmlNode *element);

/// The value of the attribute, trimmed. A null `namespaceName` stands for an attribute without namespace.
QString attributeOf(const xmlNode *element, const char *name, const char *namespaceName = nullptr);

/// The media type that the element's attribute "type" names, without its parameters and in lower case.
QString mediaTypeOf(const xmlNode *element);

/// The text without blanks and line breaks at both ends. Only these: a no-break space is a part of the text.
QString trimmedText(const QString &text);

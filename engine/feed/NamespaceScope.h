// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <libxml/tree.h>

/// The declarations of namespaces that are in force at an element, and the adding of those that it lacks.

/// The declaration of `name` that is in scope at `element` and isn't hidden there, or null. A default declaration
/// counts only when `prefixed` is false: attributes can't use it.
xmlNs *namespaceInScope(xmlNode *element, const char *name, bool prefixed);

/// A prefixed declaration of `name` that is in scope at `element`. One that is missing is added: on the document
/// element, or, where that has one which is hidden, on `element` itself, so that no element is given more than one.
/// `prefix` is the one wished for; the one used bears a number where that is taken. Every prefix that is used must be
/// declared, so that one which isn't has no meaning to lose.
xmlNs *prefixedNamespace(xmlNode *element, const char *name, const char *prefix);

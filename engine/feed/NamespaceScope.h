// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <libxml/tree.h>

/// The declarations of namespaces that are in force at an element, and the adding of those that it lacks.

/// The declaration of `name` that is in scope at `element` and isn't hidden there, or null. A default declaration
/// counts only when `prefixed` is false: attributes can't use it.
xmlNs *namespaceInScope(xmlNode *element, const char *name, bool prefixed);

/// A prefixed declaration of `name` that is in scope at `element`. One that is missing is added: on the document
/// element, or, in a document that uses prefixes without declaring them, on `element` itself. `prefix` is the one
/// wished for; the one used bears a number where that is taken.
xmlNs *prefixedNamespace(xmlNode *element, const char *name, const char *prefix);

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <libxml/tree.h>

/// Prefixes that a document uses and doesn't declare. In the tree they are parts of names, and any declaration of them
/// that is made later around them would give them a meaning.
namespace UndeclaredPrefixes {

/// Declares each of them on the document element, as a namespace that means nothing to anybody and that no other prefix
/// has. False when the document has more declarations than it may have.
bool bind(xmlDoc *document);

} // namespace UndeclaredPrefixes

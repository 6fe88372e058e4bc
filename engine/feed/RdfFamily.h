// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/feed/FeedFormat.h"

/// What RSS 0.90, RDF Site Summary 1.0 and RSS 1.1 have in common.
namespace RdfFamily {

/// True for an element of the RDF namespace with that name.
bool isRdfElement(const xmlNode *element, std::string_view name);

/// True when the element, an RDF one, has a channel among its children that lies in such a namespace.
bool holdsChannel(const xmlNode *root, NamespaceTest isOwn);

/// Adds what every item of the family has a place for.
void addTexts(ItemWriter &item, const ItemContent &content);

} // namespace RdfFamily

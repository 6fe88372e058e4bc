// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <libxml/tree.h>

/// The named entities of the Latin-1 characters, which the document type of RSS 0.91 declares. Feeds of that type use
/// them, and they have to be known without fetching it.
namespace Latin1Entities {

/// The entity of that name when `document` has the document type of RSS 0.91 and doesn't declare it itself; otherwise
/// null. The entity belongs to the document and isn't written out with it.
xmlEntity *find(xmlDoc *document, const xmlChar *name);

} // namespace Latin1Entities

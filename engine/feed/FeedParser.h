#pragma once

#include <QByteArray>

#include <libxml/tree.h>

#include <memory>

struct XmlDocDeleter
{
    void operator()(xmlDoc *document) const { xmlFreeDoc(document); }
};
using XmlDocPtr = std::unique_ptr<xmlDoc, XmlDocDeleter>;

/// Bytes of a feed into a tree and back.
namespace FeedParser {

/// The document, or null when the bytes aren't well-formed XML, break the rules of names with colons, or go past the
/// library's bounds (depth of 256 elements, names and attributes of a size that nobody writes, entities that multiply
/// the document). Entities are resolved; those whose text lies outside the document are not declared, so that nothing
/// but these bytes is read. The named Latin-1 entities of RSS 0.91's document type are known. Compressed bytes are not
/// unpacked.
XmlDocPtr parse(const QByteArray &bytes);

/// The document in its own encoding, characters that it lacks as references; in UTF-8, under a declaration that says
/// so, where its own can't hold it so that it reads back. Throws RunTimeError::deviceError() when it can't be written
/// at all.
QByteArray toBytes(xmlDoc *document);

/// True when the document's encoding lacks no character.
bool holdsEveryCharacter(const xmlDoc *document);

} // namespace FeedParser

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QString>

#include <libxml/tree.h>

#include <memory>

struct XmlDocDeleter
{
    void operator()(xmlDoc *document) const { xmlFreeDoc(document); }
};
using XmlDocPtr = std::unique_ptr<xmlDoc, XmlDocDeleter>;

/// In what the users of the gate differ. Everything else is the same for all documents.
struct XmlBounds
{
    /// An entity that a document may use without declaring it, or null; asked before the document's own.
    using KnownEntity = xmlEntity *(*)(xmlDoc *document, const xmlChar *name);

    KnownEntity knownEntity = nullptr;

    /// Where a document type could declare entities in a place that isn't read, undeclared ones are not well-formed, or
    /// else are kept as references.
    bool undeclaredEntitiesAreRefused = true;

    /// Names that break the rules of namespaces are refused, but for prefixes that are declared nowhere; or else they
    /// are taken as they stand.
    bool namespaceErrorsAreRefused = true;

    /// How many references to parameter entities are expanded, and how many bytes they may come to together. A document
    /// with more is refused. With 0 none is ever expanded.
    int parameterReferences = 0;
    qint64 parameterText = 0;
};

/// The one way into and out of libxml2.
///
/// Reading is strict and touches nothing but the bytes given: neither the network nor another file; entities whose text
/// lies outside the document are not declared, other entities are replaced by their text. Depth (256 elements), sizes
/// of names and attributes, and what general entities multiply to are bounded by the library; compressed bytes are not
/// unpacked. A parser that stops at a bound has read nothing. Nothing is ever written to the error stream.
namespace XmlGate {

/// The document, or null when the bytes aren't well-formed or go past a bound. `encoding`, when it isn't null,
/// overrides the one that the bytes declare. Throws std::bad_alloc.
XmlDocPtr parse(const QByteArray &bytes, const XmlBounds &bounds, const char *encoding = nullptr);

/// A deep copy of a node for another document, not yet placed in it; null when it can't be copied. Nodes go from one
/// document to another by this alone, and namespaces are declared in none but by reading or by names of the program's
/// own: what has to be escaped on writing is known from that.
xmlNode *copyInto(xmlDoc *document, const xmlNode *node);

/// The document in its own encoding, characters that it lacks as references; in UTF-8, under a declaration that says
/// so, where its own can't hold it so that it reads back within `bounds`. Throws RunTimeError::deviceError() when it
/// can't be written at all.
QByteArray toBytes(xmlDoc *document, const XmlBounds &bounds);

/// The node as markup, without declaration.
QString toMarkup(xmlNode *node);

/// True when the document's encoding lacks no character.
bool holdsEveryCharacter(const xmlDoc *document);

} // namespace XmlGate

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QString>

#include <libxml/tree.h>

#include <functional>
#include <memory>

struct XmlDocDeleter
{
    void operator()(xmlDoc *document) const;
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

    /// Names that break the rules of namespaces are refused, but for prefixes that are declared nowhere and addresses
    /// that are none; or else they are taken as they stand.
    bool namespaceErrorsAreRefused = true;

    /// Prefixes that are declared nowhere are declared on the document element as namespaces of nobody, so that nothing
    /// that is declared later gives them a meaning; or else they are parts of the names.
    bool undeclaredPrefixesAreBound = true;

    /// Whether the document type keeps the defaults by which elements declare namespaces or bear attributes of them.
    /// The elements that are there keep what they declare; those that are added later would fall under it.
    bool namespaceDefaultsAreKept = false;

    /// How many references to parameter entities are expanded, and how many bytes they may come to together. A document
    /// with more is refused. With 0 none is ever expanded.
    int parameterReferences = 0;
    qint64 parameterText = 0;
};

/// The one way into and out of libxml2.
///
/// Reading is strict and touches nothing but the bytes given: neither the network nor another file; entities whose text
/// lies outside the document are not declared, other entities are replaced by their text. Depth (256 elements), sizes
/// of names and comments, and what general entities multiply to are bounded by the library, the numbers of attributes,
/// declarations and names by XmlLimits; compressed bytes are not unpacked. A parser that stops at a bound has read
/// nothing. Nothing is ever written to the error stream.
namespace XmlGate {

/// The document, or null when the bytes aren't well-formed or go past a bound. `encoding`, when it isn't null,
/// overrides the one that the bytes declare. Throws std::bad_alloc.
XmlDocPtr parse(const QByteArray &bytes, const XmlBounds &bounds, const char *encoding = nullptr);

/// True for a document that can perhaps not be read again once marks were added and it was written. Whoever means to do
/// so tries it first.
bool mustBeTried(const xmlDoc *document);

/// Whether the document takes more below `parent`: declarations of the program's own, and the names and declarations of
/// a node of `from`, unless that is null.
bool hasRoom(const xmlNode *parent, const xmlDoc *from = nullptr);

/// A deep copy of a node of another document, to be placed below `parent` and not yet placed; null when there is no
/// room. Nodes go from one document to another by this alone, and namespaces are declared in none but by reading or by
/// names of the program's own: what has to be escaped on writing is known from that.
xmlNode *copyInto(xmlNode *parent, const xmlNode *node);

/// Whether the attributes of `element` keep within what a tag may have, with room for those of the program's own.
bool tagIsWithinBounds(const xmlNode *element);

/// Tells whether bytes that were written from a document say what it does.
using ReadsBack = std::function<bool(const QByteArray &written)>;

/// The document in its own encoding, characters that it lacks as references; in UTF-8, under a declaration that says
/// so, where its own can't hold it. What is returned was read back: in UTF-8 or UTF-16 by `readsBack`, or, where that
/// is empty and in all other encodings, as a whole. Throws RunTimeError::deviceError() when nothing reads back.
QByteArray toBytes(xmlDoc *document, const XmlBounds &bounds, const ReadsBack &readsBack = {});

/// The node as markup, without declaration.
QString toMarkup(xmlNode *node);

/// True when the document's encoding lacks no character.
bool holdsEveryCharacter(const xmlDoc *document);

} // namespace XmlGate

// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/xml/EscapedDeclarations.h"
#include "platform/xml/Silence.h"
#include "platform/xml/TreeWalk.h"
#include "platform/xml/XmlGate.h"

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <limits>

namespace {

struct ParserDeleter
{
    void operator()(xmlParserCtxt *parser) const { xmlFreeParserCtxt(parser); }
};
using ParserPtr = std::unique_ptr<xmlParserCtxt, ParserDeleter>;

/// What is noted while a document is parsed.
struct ParserNotes
{
    const XmlBounds &bounds;
    bool refused = false;
    bool addressesMustBeEscaped = false;
    int parameterReferences = 0;
    qint64 parameterText = 0;
};

ParserNotes &notesOf(xmlParserCtxt *parser)
{
    return *static_cast<ParserNotes *>(parser->_private);
}

void declareInternalEntity(void *context, const xmlChar *name, int type, const xmlChar *publicId,
                           const xmlChar *systemId, xmlChar *content)
{
    if (type == XML_INTERNAL_GENERAL_ENTITY || type == XML_INTERNAL_PARAMETER_ENTITY)
        xmlSAX2EntityDecl(context, name, type, publicId, systemId, content);
}

/// The library passes over undeclared entities where the document type could have declared them elsewhere.
xmlEntity *findEntity(void *context, const xmlChar *name)
{
    auto *parser = static_cast<xmlParserCtxt *>(context);
    ParserNotes &notes = notesOf(parser);
    xmlEntity *entity = notes.bounds.knownEntity != nullptr ? notes.bounds.knownEntity(parser->myDoc, name) : nullptr;
    if (entity == nullptr)
        entity = xmlSAX2GetEntity(context, name);
    const bool inDocumentType = parser->inSubset != 0;
    if (entity == nullptr && !inDocumentType && notes.bounds.undeclaredEntitiesAreRefused)
        notes.refused = true;
    return entity;
}

/// The library bounds what general entities expand to, but not parameter entities: a few lines of them keep it busy for
/// ever.
xmlEntity *findParameterEntity(void *context, const xmlChar *name)
{
    auto *parser = static_cast<xmlParserCtxt *>(context);
    ParserNotes &notes = notesOf(parser);
    if (notes.bounds.parameterReferences == 0)
        return nullptr;
    xmlEntity *entity = xmlSAX2GetParameterEntity(context, name);
    notes.parameterText += entity == nullptr ? 0 : entity->length;
    if (++notes.parameterReferences <= notes.bounds.parameterReferences &&
        notes.parameterText <= notes.bounds.parameterText)
        return entity;
    notes.refused = true;
    xmlStopParser(parser);
    return nullptr;
}

void startElement(void *context, const xmlChar *name, const xmlChar *prefix, const xmlChar *address, int namespaces,
                  const xmlChar **declared, int attributes, int defaulted, const xmlChar **values)
{
    for (int i = 0; i < namespaces; ++i) // prefix and address in turn
        if (AddressesToEscape::isOne(declared[2 * i + 1]))
            notesOf(static_cast<xmlParserCtxt *>(context)).addressesMustBeEscaped = true;
    xmlSAX2StartElementNs(context, name, prefix, address, namespaces, declared, attributes, defaulted, values);
}

/// Prefixes that are declared nowhere are borne with, since documents have them. What else breaks the rules of
/// namespaces, such as two colons in a name, has no form in the tree that could be written out again.
void judgeError(void *context, xmlError *error)
{
    ParserNotes &notes = notesOf(static_cast<xmlParserCtxt *>(context));
    if (error->domain == XML_FROM_NAMESPACE && error->level >= XML_ERR_ERROR &&
        error->code != XML_NS_ERR_UNDEFINED_NAMESPACE && notes.bounds.namespaceErrorsAreRefused)
        notes.refused = true;
}

/// What entities hold doesn't count against the bound on depth while it is parsed, but it does once it was written out
/// in their place: such a document could be saved, but not read again.
bool isTooDeep(const xmlDoc *document)
{
    if (document->intSubset == nullptr || document->intSubset->entities == nullptr)
        return false;
    const xmlNode *root = xmlDocGetRootElement(document);
    unsigned depth = 1;
    const xmlNode *node = root;
    while (const xmlNode *next = nextInTree(node, root)) {
        if (next->parent == node) {
            if (++depth >= xmlParserMaxDepth)
                return true;
        } else {
            for (const xmlNode *parent = node->parent; parent != next->parent; parent = parent->parent)
                --depth;
        }
        node = next;
    }
    return false;
}

/// A document that begins with the byte order mark of UTF-16, declared or not, is written back as that.
void noteByteOrderMark(xmlDoc *document, const QByteArray &bytes)
{
    if (document->encoding == nullptr && (bytes.startsWith("\xFF\xFE") || bytes.startsWith("\xFE\xFF")))
        document->encoding = xmlStrdup(reinterpret_cast<const xmlChar *>("UTF-16"));
}

} // namespace

XmlDocPtr XmlGate::parse(const QByteArray &bytes, const XmlBounds &bounds, const char *encoding)
{
    if (bytes.size() > std::numeric_limits<int>::max())
        return nullptr;
    const Silence silence;
    const ParserPtr parser(xmlNewParserCtxt());
    if (!parser)
        throw std::bad_alloc();
    ParserNotes notes{bounds};
    parser->_private = &notes;
    parser->sax->startElementNs = startElement;
    parser->sax->entityDecl = declareInternalEntity;
    parser->sax->getEntity = findEntity;
    parser->sax->getParameterEntity = findParameterEntity;
    parser->sax->externalSubset = nullptr;
    parser->sax->serror = judgeError;
    int options = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NOENT | XML_PARSE_COMPACT;
    if (encoding != nullptr)
        options |= XML_PARSE_IGNORE_ENC;
    XmlDocPtr document(
        xmlCtxtReadMemory(parser.get(), bytes.constData(), static_cast<int>(bytes.size()), nullptr, encoding, options));
    // Where a bound is met the library may stop and still call what it has well-formed.
    const bool stopped = parser->disableSAX != 0 || parser->errNo == XML_ERR_NO_MEMORY;
    if (!document || parser->wellFormed == 0 || stopped || notes.refused ||
        xmlDocGetRootElement(document.get()) == nullptr || isTooDeep(document.get()))
        return nullptr;
    noteByteOrderMark(document.get(), bytes);
    if (notes.addressesMustBeEscaped)
        AddressesToEscape::note(document.get());
    return document;
}

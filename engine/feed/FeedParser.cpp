#include "engine/feed/FeedParser.h"

#include "engine/feed/Latin1Entities.h"
#include "engine/feed/TreeWalk.h"
#include "platform/RunTimeError.h"

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/xmlsave.h>

#include <limits>

namespace {

struct ParserDeleter
{
    void operator()(xmlParserCtxt *parser) const { xmlFreeParserCtxt(parser); }
};
using ParserPtr = std::unique_ptr<xmlParserCtxt, ParserDeleter>;

void sayNothing(void *, const char *, ...) {}

/// Keeps the library from writing to the error stream what it thinks of a feed's bytes.
class Silence final
{
public:
    Silence() { xmlSetGenericErrorFunc(nullptr, sayNothing); }
    Silence(const Silence &) = delete;
    Silence &operator=(const Silence &) = delete;
    ~Silence() { xmlSetGenericErrorFunc(m_context, m_function); }

private:
    void *m_context = xmlGenericErrorContext;
    xmlGenericErrorFunc m_function = xmlGenericError;
};

/// What is noted while a document is parsed.
struct ParserNotes
{
    bool refused = false;
    int parameterReferences = 0;
    qint64 parameterText = 0; ///< bytes of the parameter entities that were referred to
};

ParserNotes &notesOf(xmlParserCtxt *parser)
{
    return *static_cast<ParserNotes *>(parser->_private);
}

/// Entities whose text lies outside the document are never declared, and so never read.
void declareInternalEntity(void *context, const xmlChar *name, int type, const xmlChar *publicId,
                           const xmlChar *systemId, xmlChar *content)
{
    if (type == XML_INTERNAL_GENERAL_ENTITY || type == XML_INTERNAL_PARAMETER_ENTITY)
        xmlSAX2EntityDecl(context, name, type, publicId, systemId, content);
}

/// The library passes over undeclared entities where the document type could have declared them elsewhere. Nothing is
/// read from elsewhere here, so they are an error.
xmlEntity *findEntity(void *context, const xmlChar *name)
{
    auto *parser = static_cast<xmlParserCtxt *>(context);
    xmlEntity *entity = Latin1Entities::find(parser->myDoc, name);
    if (entity == nullptr)
        entity = xmlSAX2GetEntity(context, name);
    const bool inDocumentType = parser->inSubset != 0;
    if (entity == nullptr && !inDocumentType)
        notesOf(parser).refused = true;
    return entity;
}

/// The library bounds what general entities expand to, but not parameter entities: a few lines of them keep it busy for
/// ever.
xmlEntity *findParameterEntity(void *context, const xmlChar *name)
{
    constexpr int mostReferences = 1000;
    constexpr qint64 mostText = 1000000;
    auto *parser = static_cast<xmlParserCtxt *>(context);
    xmlEntity *entity = xmlSAX2GetParameterEntity(context, name);
    ParserNotes &notes = notesOf(parser);
    notes.parameterText += entity == nullptr ? 0 : entity->length;
    if (++notes.parameterReferences <= mostReferences && notes.parameterText <= mostText)
        return entity;
    notes.refused = true;
    xmlStopParser(parser);
    return nullptr;
}

/// Prefixes that are declared nowhere are borne with, since feeds have them. What else breaks the rules of namespaces,
/// such as two colons in a name, has no form in the tree that could be written out again.
void judgeError(void *context, xmlError *error)
{
    if (error->domain == XML_FROM_NAMESPACE && error->level >= XML_ERR_ERROR &&
        error->code != XML_NS_ERR_UNDEFINED_NAMESPACE)
        notesOf(static_cast<xmlParserCtxt *>(context)).refused = true;
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

int append(void *bytes, const char *data, int size)
{
    static_cast<QByteArray *>(bytes)->append(data, size);
    return size;
}

bool write(xmlDoc *document, const char *encoding, int options, QByteArray &bytes)
{
    xmlSaveCtxt *save = xmlSaveToIO(append, nullptr, &bytes, encoding, options | XML_SAVE_AS_XML | XML_SAVE_NO_XHTML);
    if (save == nullptr)
        return false;
    const bool saved = xmlSaveDoc(save, document) >= 0;
    return xmlSaveClose(save) >= 0 && saved;
}

} // namespace

XmlDocPtr FeedParser::parse(const QByteArray &bytes)
{
    if (bytes.size() > std::numeric_limits<int>::max())
        return nullptr;
    const Silence silence;
    const ParserPtr parser(xmlNewParserCtxt());
    if (!parser)
        throw std::bad_alloc();
    ParserNotes notes;
    parser->_private = &notes;
    parser->sax->entityDecl = declareInternalEntity;
    parser->sax->getEntity = findEntity;
    parser->sax->getParameterEntity = findParameterEntity;
    parser->sax->externalSubset = nullptr;
    parser->sax->serror = judgeError;
    constexpr int options =
        XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NOENT | XML_PARSE_COMPACT;
    XmlDocPtr document(
        xmlCtxtReadMemory(parser.get(), bytes.constData(), static_cast<int>(bytes.size()), nullptr, nullptr, options));
    // Where a bound is met the library may stop and still call what it has well-formed.
    const bool stopped = parser->disableSAX != 0 || parser->errNo == XML_ERR_NO_MEMORY;
    if (!document || parser->wellFormed == 0 || stopped || notes.refused ||
        xmlDocGetRootElement(document.get()) == nullptr || isTooDeep(document.get()))
        return nullptr;
    noteByteOrderMark(document.get(), bytes);
    return document;
}

bool FeedParser::holdsEveryCharacter(const xmlDoc *document)
{
    const auto *encoding = reinterpret_cast<const char *>(document->encoding);
    return encoding == nullptr || qstrnicmp(encoding, "UTF-8", 5) == 0 || qstrnicmp(encoding, "UTF-16", 6) == 0;
}

static QByteArray withoutDeclaration(xmlDoc *document)
{
    QByteArray bytes;
    return write(document, "UTF-8", XML_SAVE_NO_DECL, bytes) ? bytes : QByteArray();
}

static bool readsBack(xmlDoc *document, const QByteArray &written)
{
    const XmlDocPtr again = FeedParser::parse(written);
    return again && withoutDeclaration(again.get()) == withoutDeclaration(document);
}

QByteArray FeedParser::toBytes(xmlDoc *document)
{
    const Silence silence;
    const auto *encoding = reinterpret_cast<const char *>(document->encoding);
    QByteArray bytes;
    if (encoding == nullptr) {
        // The library would write every character beyond ASCII as a reference; such a document is UTF-8, so it is
        // written as that, under a declaration that names no encoding either.
        bytes = "<?xml version=\"1.0\"?>\n";
        if (write(document, "UTF-8", XML_SAVE_NO_DECL, bytes))
            return bytes;
        throw RunTimeError::deviceError();
    }
    // Other encodings lack characters, which can be written as references in texts but not in names; and some keep a
    // state between characters, which the library loses, or map two ways. They are looked at again.
    if (write(document, encoding, 0, bytes) && (holdsEveryCharacter(document) || readsBack(document, bytes)))
        return bytes;
    bytes.clear();
    if (write(document, "UTF-8", 0, bytes))
        return bytes;
    throw RunTimeError::deviceError();
}

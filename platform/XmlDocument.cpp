#include "platform/XmlDocument.h"

#include "platform/Files.h"
#include "platform/RunTimeError.h"

#include <QList>

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlsave.h>

#include <algorithm>
#include <limits>

namespace {

struct DocumentDeleter
{
    void operator()(xmlDoc *document) const { xmlFreeDoc(document); }
};
struct ParserDeleter
{
    void operator()(xmlParserCtxt *parser) const { xmlFreeParserCtxt(parser); }
};
struct BufferDeleter
{
    void operator()(xmlBuffer *buffer) const { xmlBufferFree(buffer); }
};
using DocumentPtr = std::unique_ptr<xmlDoc, DocumentDeleter>;
using ParserPtr = std::unique_ptr<xmlParserCtxt, ParserDeleter>;
using BufferPtr = std::unique_ptr<xmlBuffer, BufferDeleter>;

const xmlChar *chars(const QByteArray &utf8)
{
    return reinterpret_cast<const xmlChar *>(utf8.constData());
}

QString text(const xmlChar *utf8)
{
    return QString::fromUtf8(reinterpret_cast<const char *>(utf8));
}

QString takeText(xmlChar *utf8)
{
    const QString result = text(utf8);
    xmlFree(utf8);
    return result;
}

/// The text without the characters that XML 1.0 can't hold (production 2 of the recommendation).
QByteArray writable(const QString &value)
{
    QString clean;
    clean.reserve(value.size());
    for (const QChar c : value) {
        const char16_t unit = c.unicode();
        if ((unit >= 0x20 || unit == u'\t' || unit == u'\n' || unit == u'\r') && unit != 0xFFFE && unit != 0xFFFF)
            clean += c;
    }
    return clean.toUtf8();
}

bool hasQualifiedName(const xmlChar *local, const xmlNs *ns, QByteArrayView wanted)
{
    const auto same = [](const xmlChar *a, QByteArrayView b) {
        return QByteArrayView(reinterpret_cast<const char *>(a)) == b;
    };
    if (ns == nullptr || ns->prefix == nullptr)
        return same(local, wanted);
    const qsizetype colon = wanted.indexOf(':');
    return colon >= 0 && same(ns->prefix, wanted.first(colon)) && same(local, wanted.sliced(colon + 1));
}

xmlAttr *findAttribute(const xmlNode *element, const QString &name)
{
    const QByteArray wanted = name.toUtf8();
    if (element->type == XML_ELEMENT_NODE)
        for (xmlAttr *attribute = element->properties; attribute != nullptr; attribute = attribute->next)
            if (hasQualifiedName(attribute->name, attribute->ns, wanted))
                return attribute;
    return nullptr;
}

xmlNode *firstChildElement(const xmlNode *parent, QByteArrayView name)
{
    for (xmlNode *child = parent->children; child != nullptr; child = child->next)
        if (child->type == XML_ELEMENT_NODE && hasQualifiedName(child->name, child->ns, name))
            return child;
    return nullptr;
}

/// Goes down from `node` by the qualified names of the path; null where a step leads nowhere.
xmlNode *elementAt(xmlNode *node, const QString &path)
{
    const QList<QByteArray> steps = path.toUtf8().split('/');
    for (const QByteArray &step : steps) {
        node = firstChildElement(node, step);
        if (node == nullptr)
            return nullptr;
    }
    return node;
}

/// Entities whose text lies outside the document are never declared, and so never read.
void declareInternalEntity(void *context, const xmlChar *name, int type, const xmlChar *publicId,
                           const xmlChar *systemId, xmlChar *content)
{
    if (type == XML_INTERNAL_GENERAL_ENTITY || type == XML_INTERNAL_PARAMETER_ENTITY)
        xmlSAX2EntityDecl(context, name, type, publicId, systemId, content);
}

/// Parameter entities are never expanded: the library bounds what general ones come to, but a few lines of these keep
/// it busy for ever.
xmlEntity *findNoParameterEntity(void *, const xmlChar *)
{
    return nullptr;
}

/// The document, or null when the bytes aren't well-formed. `encoding` overrides the declared one when it isn't null.
DocumentPtr parse(const QByteArray &bytes, const char *encoding)
{
    if (bytes.size() > std::numeric_limits<int>::max())
        return nullptr;
    const ParserPtr parser(xmlNewParserCtxt());
    if (!parser)
        throw std::bad_alloc();
    parser->sax->entityDecl = declareInternalEntity;
    parser->sax->getParameterEntity = findNoParameterEntity;
    int options = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NOENT;
    if (encoding != nullptr)
        options |= XML_PARSE_IGNORE_ENC;
    DocumentPtr document(
        xmlCtxtReadMemory(parser.get(), bytes.constData(), static_cast<int>(bytes.size()), nullptr, encoding, options));
    // Where a bound is met the library may stop and still call what it has well-formed.
    const bool stopped = parser->disableSAX != 0 || parser->errNo == XML_ERR_NO_MEMORY;
    return parser->wellFormed != 0 && !stopped ? std::move(document) : nullptr;
}

} // namespace

/// The libxml2 document and the nodes of it that stand outside its tree at present.
struct XmlTree
{
    DocumentPtr document;
    std::vector<xmlNode *> outside;

    XmlTree() = default;
    XmlTree(const XmlTree &) = delete;
    XmlTree &operator=(const XmlTree &) = delete;
    ~XmlTree()
    {
        for (xmlNode *node : outside)
            xmlFreeNode(node);
    }

    void takeIn(xmlNode *node)
    {
        xmlUnlinkNode(node);
        outside.erase(std::remove(outside.begin(), outside.end(), node), outside.end());
    }

    void takeOut(xmlNode *node)
    {
        takeIn(node);
        outside.push_back(node);
    }
};

static xmlNode *raw(void *node)
{
    return static_cast<xmlNode *>(node);
}

XmlNode::XmlNode(std::shared_ptr<XmlTree> tree, void *node) : m_tree(std::move(tree)), m_node(node)
{
    if (m_node == nullptr)
        m_tree.reset();
}

XmlNode XmlNode::sibling(void *node) const
{
    return {m_tree, node};
}

void *XmlNode::required() const
{
    if (m_node == nullptr)
        throw RunTimeError::objectNotSet();
    return m_node;
}

bool XmlNode::isElement() const
{
    return m_node != nullptr && raw(m_node)->type == XML_ELEMENT_NODE;
}

QString XmlNode::nodeName() const
{
    const xmlNode *node = raw(required());
    switch (node->type) {
    case XML_ELEMENT_NODE:
        return node->ns != nullptr && node->ns->prefix != nullptr
                   ? QString(::text(node->ns->prefix) + u':' + ::text(node->name))
                   : ::text(node->name);
    case XML_TEXT_NODE:
        return QStringLiteral("#text");
    case XML_CDATA_SECTION_NODE:
        return QStringLiteral("#cdata-section");
    case XML_COMMENT_NODE:
        return QStringLiteral("#comment");
    default:
        return node->name != nullptr ? ::text(node->name) : QString();
    }
}

QString XmlNode::text() const
{
    return takeText(xmlNodeGetContent(raw(required())));
}

std::vector<XmlNode> XmlNode::childNodes() const
{
    std::vector<XmlNode> children;
    for (xmlNode *child = raw(required())->children; child != nullptr; child = child->next)
        if (xmlIsBlankNode(child) == 0)
            children.push_back(sibling(child));
    return children;
}

XmlNode XmlNode::parentNode() const
{
    xmlNode *parent = raw(required())->parent;
    return sibling(parent != nullptr && parent->type == XML_ELEMENT_NODE ? parent : nullptr);
}

XmlNode XmlNode::selectSingleNode(const QString &path) const
{
    return sibling(elementAt(raw(required()), path));
}

std::vector<XmlNode> XmlNode::selectNodes(const QString &name) const
{
    std::vector<XmlNode> found;
    const QByteArray wanted = name.toUtf8();
    for (xmlNode *child = raw(required())->children; child != nullptr; child = child->next)
        if (child->type == XML_ELEMENT_NODE && hasQualifiedName(child->name, child->ns, wanted))
            found.push_back(sibling(child));
    return found;
}

std::optional<QString> XmlNode::attribute(const QString &name) const
{
    const xmlAttr *found = findAttribute(raw(required()), name);
    if (found == nullptr)
        return std::nullopt;
    return takeText(xmlNodeListGetString(raw(m_node)->doc, found->children, 1));
}

QString XmlNode::requiredAttribute(const QString &name) const
{
    const std::optional<QString> value = attribute(name);
    if (!value)
        throw RunTimeError::objectNotSet();
    return *value;
}

void XmlNode::setAttribute(const QString &name, const QString &value)
{
    xmlNode *element = raw(required());
    if (element->type != XML_ELEMENT_NODE)
        throw RunTimeError::objectNotSet();
    const xmlAttr *found = findAttribute(element, name);
    if (found != nullptr)
        xmlSetNsProp(element, found->ns, found->name, chars(writable(value)));
    else
        xmlSetProp(element, chars(name.toUtf8()), chars(writable(value)));
}

void XmlNode::appendChild(const XmlNode &child)
{
    xmlNode *parent = raw(required());
    xmlNode *node = raw(child.required());
    m_tree->takeIn(node);
    xmlAddChild(parent, node);
}

void XmlNode::insertBefore(const XmlNode &child, const XmlNode &reference)
{
    xmlNode *node = raw(child.required());
    xmlNode *before = raw(reference.required());
    if (before->parent != raw(required()))
        throw RunTimeError::invalidCall();
    m_tree->takeIn(node);
    xmlAddPrevSibling(before, node);
}

void XmlNode::replaceChild(const XmlNode &child, const XmlNode &old)
{
    insertBefore(child, old);
    removeChild(old);
}

void XmlNode::removeChild(const XmlNode &child)
{
    xmlNode *node = raw(child.required());
    if (node->parent != raw(required()))
        throw RunTimeError::invalidCall();
    m_tree->takeOut(node);
}

QString XmlNode::xml() const
{
    xmlNode *node = raw(required());
    const BufferPtr buffer(xmlBufferCreate());
    xmlSaveCtxt *save = xmlSaveToBuffer(buffer.get(), "UTF-8", XML_SAVE_NO_DECL);
    xmlSaveTree(save, node);
    xmlSaveClose(save);
    return ::text(xmlBufferContent(buffer.get()));
}

XmlDocument::XmlDocument() : m_tree(std::make_shared<XmlTree>())
{
    m_tree->document.reset(xmlNewDoc(chars("1.0")));
}

XmlDocument::LoadResult XmlDocument::load(const QString &path)
{
    *this = XmlDocument();
    const Files::Content content = Files::read(path);
    if (content.result == Files::ReadResult::Absent)
        return LoadResult::Absent;
    if (content.result == Files::ReadResult::Unreadable)
        return LoadResult::Unreadable;
    return loadXml(content.bytes);
}

XmlDocument::LoadResult XmlDocument::loadXml(const QByteArray &bytes)
{
    *this = XmlDocument();
    DocumentPtr document = parse(bytes, nullptr);
    if (!document)
        return LoadResult::Malformed;
    m_tree->document = std::move(document);
    return LoadResult::Loaded;
}

XmlDocument::LoadResult XmlDocument::loadXml(const QString &text)
{
    *this = XmlDocument();
    DocumentPtr document = parse(text.toUtf8(), "UTF-8");
    if (!document)
        return LoadResult::Malformed;
    m_tree->document = std::move(document);
    return LoadResult::Loaded;
}

void XmlDocument::save(const QString &path) const
{
    Files::write(path, toBytes());
}

QByteArray XmlDocument::toBytes() const
{
    xmlDoc *document = m_tree->document.get();
    const BufferPtr buffer(xmlBufferCreate());
    // Without a declared encoding the library would write every character beyond ASCII as a reference; such a document
    // is UTF-8, so it is written as that, under its own declaration.
    const bool declared = document->encoding != nullptr;
    const char *encoding = declared ? reinterpret_cast<const char *>(document->encoding) : "UTF-8";
    xmlSaveCtxt *save = xmlSaveToBuffer(buffer.get(), encoding, declared ? 0 : XML_SAVE_NO_DECL);
    if (save == nullptr)
        throw RunTimeError::deviceError();
    xmlSaveDoc(save, document);
    if (xmlSaveClose(save) < 0)
        throw RunTimeError::deviceError();
    const QByteArray body(reinterpret_cast<const char *>(xmlBufferContent(buffer.get())),
                          xmlBufferLength(buffer.get()));
    return declared ? body : QByteArray("<?xml version=\"1.0\"?>\n") + body;
}

XmlNode XmlDocument::selectSingleNode(const QString &path) const
{
    return {m_tree, elementAt(reinterpret_cast<xmlNode *>(m_tree->document.get()), path)};
}

XmlNode XmlDocument::documentElement() const
{
    return {m_tree, xmlDocGetRootElement(m_tree->document.get())};
}

XmlNode XmlDocument::createElement(const QString &name)
{
    xmlNode *node = xmlNewDocNode(m_tree->document.get(), nullptr, chars(name.toUtf8()), nullptr);
    m_tree->outside.push_back(node);
    return {m_tree, node};
}

XmlNode XmlDocument::importNode(const XmlNode &node)
{
    xmlNode *copy = xmlDocCopyNode(raw(node.required()), m_tree->document.get(), 1);
    if (copy == nullptr)
        throw RunTimeError::invalidCall();
    m_tree->outside.push_back(copy);
    return {m_tree, copy};
}

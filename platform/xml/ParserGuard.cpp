// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/xml/ParserGuard.h"

#include "platform/xml/EscapedDeclarations.h"
#include "platform/xml/WrittenLength.h"
#include "platform/xml/XmlLimits.h"

#include <libxml/SAX2.h>
#include <libxml/parserInternals.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <string_view>

namespace {

qint64 lengthOf(const xmlChar *text)
{
    return text == nullptr ? 0 : static_cast<qint64>(std::strlen(reinterpret_cast<const char *>(text)));
}

} // namespace

ParserGuard::ParserGuard(const XmlBounds &bounds) : m_bounds(bounds), m_parser(xmlNewParserCtxt())
{
    if (m_parser == nullptr)
        throw std::bad_alloc();
    m_parser->_private = this;
    xmlDictSetLimit(m_parser->dict, 0); // the number of names is bounded instead
    handlers().entityDecl = declareEntity;
    handlers().attributeDecl = declareAttribute;
    handlers().getEntity = findEntity;
    handlers().getParameterEntity = findParameterEntity;
    handlers().externalSubset = nullptr;
    handlers().serror = judgeError;
    static xmlChar nothing[] = "";
    m_passedOver.type = XML_ENTITY_DECL;
    m_passedOver.etype = XML_INTERNAL_PARAMETER_ENTITY;
    m_passedOver.name = m_passedOver.content = m_passedOver.orig = nothing;
}

ParserGuard::~ParserGuard()
{
    xmlFreeParserCtxt(m_parser);
}

bool ParserGuard::read(const QByteArray &bytes, const char *encoding, XmlDocPtr &document)
{
    if (bytes.size() > std::numeric_limits<int>::max())
        return false;
    m_rest = bytes;
    int options = XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NOENT | XML_PARSE_COMPACT;
    if (encoding != nullptr)
        options |= XML_PARSE_IGNORE_ENC;
    document.reset(xmlCtxtReadIO(m_parser, readMore, nullptr, this, nullptr, encoding, options));
    // Where a bound is met the library may stop and still call what it has well-formed.
    const bool stopped = m_parser->disableSAX != 0 || m_parser->errNo == XML_ERR_NO_MEMORY;
    return document && m_parser->wellFormed != 0 && !stopped && !m_refused;
}

/// Hands the bytes over in small portions: in the middle of a tag nothing else is told, and the library's tables show
/// how many attributes and declarations it has met there.
int ParserGuard::readMore(void *context, char *buffer, int size)
{
    auto &guard = *static_cast<ParserGuard *>(context);
    constexpr int placesOfAttribute = 5;
    constexpr int growth = 2; // of the table, and no table that it needs for fewer is larger
    if (guard.m_parser->maxatts > XmlLimits::attributes * placesOfAttribute * growth ||
        guard.m_parser->nsNr > XmlLimits::declarations * 2) {
        guard.m_refused = true;
        return -1;
    }
    const auto portion = std::min<qsizetype>(size, guard.m_rest.size());
    std::copy_n(guard.m_rest.data(), portion, buffer);
    guard.m_rest = guard.m_rest.sliced(portion);
    return static_cast<int>(portion);
}

void ParserGuard::refuse(void *context)
{
    m_refused = true;
    xmlStopParser(static_cast<xmlParserCtxt *>(context));
}

bool ParserGuard::admits(void *context, const Start &start)
{
    m_undeclaredPrefixes = m_undeclaredPrefixes || (start.prefix != nullptr && start.address == nullptr);
    const int inForce = static_cast<xmlParserCtxt *>(context)->nsNr / 2;
    const int names = xmlDictSize(m_parser->dict);
    m_notes.declarations = std::max(m_notes.declarations, inForce);
    m_notes.mustBeTried = m_notes.mustBeTried || inForce > XmlLimits::declarations - XmlLimits::margin ||
                          names > XmlLimits::names - XmlLimits::marginOfNames;
    if (!m_refused && inForce <= XmlLimits::declarations && names <= XmlLimits::names && admitsDeclarations(start) &&
        admitsAttributes(start))
        return true;
    refuse(context);
    return false;
}

void ParserGuard::forgetTag(void *context)
{
    constexpr qsizetype worthwhile = 65536;
    xmlParserInput *input = static_cast<xmlParserCtxt *>(context)->input;
    if (input->cur - input->base > worthwhile)
        xmlParserInputShrink(input);
}

bool ParserGuard::admitsDeclarations(const Start &start)
{
    for (qsizetype i = 0; i < start.namespaces; ++i) {
        const xmlChar *address = start.declared[2 * i + 1];
        if (lengthOf(start.declared[2 * i]) > XmlLimits::prefix || lengthOf(address) > XmlLimits::address)
            return false;
        m_notes.addressesMustBeEscaped = m_notes.addressesMustBeEscaped || mustBeEscaped(address);
    }
    return true;
}

bool ParserGuard::admitsAttributes(const Start &start)
{
    m_defaulted += start.defaulted + (m_namespacesByDefault ? start.namespaces : 0);
    if (m_defaulted > XmlLimits::defaulted)
        return false;
    if (start.attributes == 0)
        return true;
    qint64 names = 0;
    qint64 values = 0;
    for (int i = 0; i < start.attributes; ++i) {
        const xmlChar **attribute = start.values + qsizetype(5) * i;
        m_undeclaredPrefixes = m_undeclaredPrefixes || (attribute[1] != nullptr && attribute[2] == nullptr);
        names += lengthOf(attribute[0]) + lengthOf(attribute[1]) + 5;
        values += attribute[4] - attribute[3];
    }
    constexpr int atWorst = 10;
    if (names + values * atWorst > XmlLimits::tag - XmlLimits::marginOfTag) {
        values = 0;
        for (qsizetype i = 0; i < start.attributes; ++i)
            values += writtenLength(start.values[5 * i + 3], start.values[5 * i + 4]);
        m_notes.mustBeTried = m_notes.mustBeTried || names + values > XmlLimits::tag - XmlLimits::marginOfTag;
        if (names + values > XmlLimits::tag)
            return false;
    }
    m_notes.mustBeTried = m_notes.mustBeTried || start.attributes > XmlLimits::attributes - XmlLimits::margin;
    return start.attributes <= XmlLimits::attributes;
}

/// Entities whose text lies outside the document aren't declared. What an entity holds is read from memory, without
/// readMore(), so that its attributes are counted here.
void ParserGuard::declareEntity(void *context, const xmlChar *name, int type, const xmlChar *publicId,
                                const xmlChar *systemId, xmlChar *content)
{
    ParserGuard &guard = of(context);
    const bool isInternal = type == XML_INTERNAL_GENERAL_ENTITY || type == XML_INTERNAL_PARAMETER_ENTITY;
    const bool isPassedOver = type == XML_EXTERNAL_PARAMETER_ENTITY && guard.m_bounds.parameterReferences > 0;
    if (!isInternal && !isPassedOver)
        return;
    const auto *text = reinterpret_cast<const char *>(content);
    const auto length = static_cast<std::size_t>(lengthOf(content));
    if (type == XML_INTERNAL_GENERAL_ENTITY && std::memchr(text, '<', length) != nullptr) {
        guard.m_notes.mustBeTried = true;
        if (std::count(text, text + length, '=') > XmlLimits::attributes) {
            guard.refuse(context);
            return;
        }
    }
    xmlSAX2EntityDecl(context, name, type, publicId, systemId, content);
}

void ParserGuard::declareAttribute(void *context, const xmlChar *element, const xmlChar *name, int type, int kind,
                                   const xmlChar *value, xmlEnumeration *values)
{
    ParserGuard &guard = of(context);
    if (++guard.m_attributeDeclarations > XmlLimits::attributeDeclarations)
        guard.refuse(context);
    const std::string_view full(reinterpret_cast<const char *>(name));
    const bool concernsNamespaces = full == "xmlns" || full.find(':') != std::string_view::npos;
    guard.m_namespacesByDefault = guard.m_namespacesByDefault || full.starts_with("xmlns");
    if (!guard.m_refused && (!concernsNamespaces || guard.m_bounds.namespaceDefaultsAreKept))
        xmlSAX2AttributeDecl(context, element, name, type, kind, value, values);
    else
        xmlFreeEnumeration(values);
}

/// The library passes over undeclared entities where the document type could have declared them elsewhere.
xmlEntity *ParserGuard::findEntity(void *context, const xmlChar *name)
{
    auto *parser = static_cast<xmlParserCtxt *>(context);
    ParserGuard &guard = of(context);
    xmlEntity *entity =
        guard.m_bounds.knownEntity != nullptr ? guard.m_bounds.knownEntity(parser->myDoc, name) : nullptr;
    if (entity == nullptr)
        entity = xmlSAX2GetEntity(context, name);
    const bool inDocumentType = parser->inSubset != 0;
    if (entity == nullptr && !inDocumentType && guard.m_bounds.undeclaredEntitiesAreRefused)
        guard.m_refused = true;
    return entity;
}

/// The library bounds what general entities expand to, but not parameter entities: a few lines of them keep it busy for
/// ever. Those that lie outside say nothing: the library would fetch them.
xmlEntity *ParserGuard::findParameterEntity(void *context, const xmlChar *name)
{
    ParserGuard &guard = of(context);
    if (guard.m_bounds.parameterReferences == 0)
        return nullptr;
    xmlEntity *entity = xmlSAX2GetParameterEntity(context, name);
    if (entity != nullptr && entity->etype != XML_INTERNAL_PARAMETER_ENTITY)
        entity = &guard.m_passedOver;
    guard.m_parameterText += entity == nullptr ? 0 : entity->length;
    if (++guard.m_parameterReferences <= guard.m_bounds.parameterReferences &&
        guard.m_parameterText <= guard.m_bounds.parameterText)
        return entity;
    guard.refuse(context);
    return nullptr;
}

/// Prefixes that are declared nowhere are borne with, since documents have them, and so are addresses that are none.
/// What else breaks the rules of namespaces, such as two colons in a name, has no form in the tree that could be
/// written out again.
void ParserGuard::judgeError(void *context, xmlError *error)
{
    ParserGuard &guard = of(context);
    if (error->domain == XML_FROM_NAMESPACE && error->level >= XML_ERR_ERROR &&
        error->code != XML_NS_ERR_UNDEFINED_NAMESPACE && error->code != XML_WAR_NS_URI &&
        error->code != XML_WAR_NS_URI_RELATIVE && guard.m_bounds.namespaceErrorsAreRefused)
        guard.m_refused = true;
}

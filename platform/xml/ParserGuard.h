// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/xml/DocumentNotes.h"
#include "platform/xml/Silence.h"
#include "platform/xml/XmlGate.h"

#include <libxml/parser.h>

/// A parser of the library that keeps within the bounds. What is done with the elements and texts is left to its users,
/// who set the handlers for them before read(), and ask admits() for each element first.
class ParserGuard final
{
public:
    /// Throws std::bad_alloc.
    explicit ParserGuard(const XmlBounds &bounds);
    ParserGuard(const ParserGuard &) = delete;
    ParserGuard &operator=(const ParserGuard &) = delete;
    ~ParserGuard();

    xmlParserCtxt *parser() const { return m_parser; }
    xmlSAXHandler &handlers() { return *m_parser->sax; }
    DocumentNotes &notes() { return m_notes; }
    bool usesUndeclaredPrefixes() const { return m_undeclaredPrefixes; }

    /// Free for the users' handlers, who find the guard by of().
    void *user = nullptr;
    static ParserGuard &of(void *context)
    {
        return *static_cast<ParserGuard *>(static_cast<xmlParserCtxt *>(context)->_private);
    }

    /// False for a parser that the library makes for what an entity holds.
    bool isMain(void *context) const { return context == m_parser; }

    /// What the library tells of an element's start.
    struct Start
    {
        const xmlChar *prefix;
        const xmlChar *address;
        int namespaces;
        const xmlChar **declared; ///< prefix and address in turn
        int attributes;
        int defaulted;
        const xmlChar **values; ///< name, prefix, address, begin and end in turn
    };

    /// False when the element goes past a bound; the document is then refused and the parser stopped.
    bool admits(void *context, const Start &start);

    /// To be called once an element's start has been dealt with. The library keeps what it has read until it chances to
    /// come near the end of a portion, and refuses to go on when that is ten million bytes: long tags that follow each
    /// other would be counted together, or not, by where they happen to stand.
    static void forgetTag(void *context);

    /// Reads all bytes, and tells whether they are well-formed and within the bounds. What the library then calls the
    /// document, it has also when the answer is false.
    bool read(const QByteArray &bytes, const char *encoding, XmlDocPtr &document);

private:
    static int readMore(void *context, char *buffer, int size);
    static void declareEntity(void *context, const xmlChar *name, int type, const xmlChar *publicId,
                              const xmlChar *systemId, xmlChar *content);
    static void declareAttribute(void *context, const xmlChar *element, const xmlChar *name, int type, int kind,
                                 const xmlChar *value, xmlEnumeration *values);
    static xmlEntity *findEntity(void *context, const xmlChar *name);
    static xmlEntity *findParameterEntity(void *context, const xmlChar *name);
    static void judgeError(void *context, xmlError *error);

    void refuse(void *context);
    bool admitsDeclarations(const Start &start);
    bool admitsAttributes(const Start &start);

    const Silence m_silence;
    const XmlBounds &m_bounds;
    xmlParserCtxt *m_parser;
    xmlEntity m_passedOver{}; ///< stands for parameter entities that lie outside
    DocumentNotes m_notes;
    QByteArrayView m_rest; ///< not yet read
    bool m_refused = false;
    bool m_undeclaredPrefixes = false;
    int m_parameterReferences = 0;
    qint64 m_parameterText = 0;
    int m_attributeDeclarations = 0;
    bool m_namespacesByDefault = false;
    int m_defaulted = 0;
};

// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/xml/XmlStream.h"

#include "platform/xml/ParserGuard.h"

#include <libxml/parserInternals.h>

namespace {

struct Stream
{
    XmlListener &listener;
    unsigned depth = 0;
    bool failed = false;
};

Stream &streamOf(void *context)
{
    return *static_cast<Stream *>(ParserGuard::of(context).user);
}

void startElement(void *context, const xmlChar *name, const xmlChar *prefix, const xmlChar *address, int namespaces,
                  const xmlChar **declared, int attributes, int defaulted, const xmlChar **values)
{
    if (!ParserGuard::of(context).admits(context,
                                         {prefix, address, namespaces, declared, attributes, defaulted, values}))
        return;
    Stream &stream = streamOf(context);
    stream.failed = stream.failed || ++stream.depth > xmlParserMaxDepth + 1; // as deep as a tree may be
    if (prefix != nullptr && address == nullptr)                             // a part of the name, as in a tree
        name = xmlDictQLookup(static_cast<xmlParserCtxt *>(context)->dict, prefix, name);
    stream.listener.begin({name, address, attributes - defaulted, values}); // those by default stand last, in no tree
    ParserGuard::forgetTag(context);
}

void endElement(void *context, const xmlChar *, const xmlChar *, const xmlChar *)
{
    Stream &stream = streamOf(context);
    --stream.depth;
    stream.listener.end();
}

void addText(void *context, const xmlChar *text, int size)
{
    streamOf(context).listener.text({reinterpret_cast<const char *>(text), static_cast<std::size_t>(size)});
}

xmlEntity *findNoEntity(void *context, const xmlChar *)
{
    if (static_cast<xmlParserCtxt *>(context)->inSubset == 0) // it is also asked for where one is declared
        streamOf(context).failed = true;
    return nullptr;
}

} // namespace

bool XmlGate::readThrough(const QByteArray &bytes, const XmlBounds &bounds, XmlListener &listener)
{
    Stream stream{listener};
    ParserGuard guard(bounds);
    guard.user = &stream;
    xmlSAXHandler &handlers = guard.handlers();
    handlers.startElementNs = startElement;
    handlers.endElementNs = endElement;
    handlers.characters = handlers.ignorableWhitespace = handlers.cdataBlock = addText;
    handlers.getEntity = findNoEntity;
    handlers.comment = nullptr;
    handlers.processingInstruction = nullptr;
    XmlDocPtr document;
    return guard.read(bytes, nullptr, document) && !stream.failed;
}

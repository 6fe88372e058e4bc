// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/RunTimeError.h"
#include "platform/xml/DocumentNotes.h"
#include "platform/xml/EscapedDeclarations.h"
#include "platform/xml/Silence.h"
#include "platform/xml/TreeWalk.h"
#include "platform/xml/WrittenLength.h"
#include "platform/xml/XmlGate.h"
#include "platform/xml/XmlLimits.h"

#include <libxml/xmlsave.h>

#include <algorithm>
#include <new>
#include <utility>

namespace {

int append(void *bytes, const char *data, int size)
{
    static_cast<QByteArray *>(bytes)->append(data, size);
    return size;
}

xmlSaveCtxt *saveInto(QByteArray &bytes, const char *encoding, int options)
{
    return xmlSaveToIO(append, nullptr, &bytes, encoding, options | XML_SAVE_AS_XML | XML_SAVE_NO_XHTML);
}

bool write(xmlDoc *document, const char *encoding, int options, QByteArray &bytes)
{
    xmlSaveCtxt *save = saveInto(bytes, encoding, options);
    if (save == nullptr)
        return false;
    const bool saved = xmlSaveDoc(save, document) >= 0;
    return xmlSaveClose(save) >= 0 && saved;
}

QByteArray withoutDeclaration(xmlDoc *document)
{
    QByteArray bytes;
    return write(document, "UTF-8", XML_SAVE_NO_DECL, bytes) ? bytes : QByteArray();
}

/// `document` with its declarations escaped.
bool readsBackAsAWhole(xmlDoc *document, const QByteArray &written, const XmlBounds &bounds)
{
    const XmlDocPtr again = XmlGate::parse(written, bounds);
    if (!again)
        return xmlDocGetRootElement(document) == nullptr;
    const EscapedDeclarations escapedToo(again.get());
    return withoutDeclaration(again.get()) == withoutDeclaration(document);
}

int declarationsAround(const xmlNode *element)
{
    int count = 0;
    for (; element != nullptr && element->type == XML_ELEMENT_NODE; element = element->parent)
        for (const xmlNs *ns = element->nsDef; ns != nullptr; ns = ns->next)
            ++count;
    return count;
}

int namesOf(const xmlDoc *document)
{
    return document->dict == nullptr ? 0 : xmlDictSize(document->dict);
}

/// What a copy declares counts as names once it is read again.
void noteDeclaredNames(xmlDict *dictionary, const xmlNode *top)
{
    for (const xmlNode *node = top; node != nullptr && dictionary != nullptr; node = nextInTree(node, top))
        for (const xmlNs *ns = node->type == XML_ELEMENT_NODE ? node->nsDef : nullptr; ns != nullptr; ns = ns->next) {
            xmlDictLookup(dictionary, ns->href, -1);
            if (ns->prefix != nullptr)
                xmlDictLookup(dictionary, ns->prefix, -1);
        }
}

} // namespace

bool XmlGate::hasRoom(const xmlNode *parent, const xmlDoc *from)
{
    const DocumentNotes notes = DocumentNotes::of(std::as_const(*parent->doc));
    const DocumentNotes fromNotes = from == nullptr ? DocumentNotes() : DocumentNotes::of(*from);
    const int inForce = std::max(notes.declarations, declarationsAround(parent) + fromNotes.declarations);
    const int names = namesOf(parent->doc) + (from == nullptr ? 0 : namesOf(from));
    return inForce + XmlLimits::margin <= XmlLimits::declarations &&
           names + XmlLimits::marginOfNames <= XmlLimits::names;
}

xmlNode *XmlGate::copyInto(xmlNode *parent, const xmlNode *node)
{
    if (!hasRoom(parent, node->doc))
        return nullptr;
    xmlDoc *document = parent->doc;
    xmlNode *copy = xmlDocCopyNode(const_cast<xmlNode *>(node), document, 1);
    if (copy == nullptr)
        throw std::bad_alloc();
    const DocumentNotes from = DocumentNotes::of(std::as_const(*node->doc));
    DocumentNotes &notes = DocumentNotes::of(*document);
    notes.addressesMustBeEscaped = notes.addressesMustBeEscaped || from.addressesMustBeEscaped;
    notes.declarations = std::max(notes.declarations, declarationsAround(parent) + from.declarations);
    noteDeclaredNames(document->dict, copy);
    return copy;
}

bool XmlGate::tagIsWithinBounds(const xmlNode *element)
{
    qint64 size = XmlLimits::marginOfTag;
    int attributes = XmlLimits::margin;
    for (const xmlAttr *attribute = element->properties; attribute != nullptr; attribute = attribute->next) {
        ++attributes;
        for (const xmlNode *text = attribute->children; text != nullptr; text = text->next)
            if (text->content != nullptr)
                size += writtenLength(text->content, text->content + xmlStrlen(text->content));
    }
    return size <= XmlLimits::tag && attributes <= XmlLimits::attributes;
}

bool XmlGate::holdsEveryCharacter(const xmlDoc *document)
{
    const auto *encoding = reinterpret_cast<const char *>(document->encoding);
    return encoding == nullptr || qstrnicmp(encoding, "UTF-8", 5) == 0 || qstrnicmp(encoding, "UTF-16", 6) == 0;
}

QByteArray XmlGate::toBytes(xmlDoc *document, const XmlBounds &bounds, const ReadsBack &readsBack)
{
    const Silence silence;
    const EscapedDeclarations escapedDeclarations(document);
    const auto isGood = [&](const QByteArray &written, bool everyCharacterIsHeld) {
        return readsBack && everyCharacterIsHeld ? readsBack(written) : readsBackAsAWhole(document, written, bounds);
    };
    const auto *encoding = reinterpret_cast<const char *>(document->encoding);
    QByteArray bytes;
    if (encoding == nullptr) {
        // The library would write every character beyond ASCII as a reference; such a document is UTF-8, so it is
        // written as that, under a declaration that names no encoding either.
        bytes = "<?xml version=\"1.0\"?>\n";
        if (write(document, "UTF-8", XML_SAVE_NO_DECL, bytes) && isGood(bytes, true))
            return bytes;
        throw RunTimeError::deviceError();
    }
    // Other encodings lack characters, which can be written as references in texts but not in names; and some keep a
    // state between characters, which the library loses, or map two ways.
    if (write(document, encoding, 0, bytes) && isGood(bytes, holdsEveryCharacter(document)))
        return bytes;
    bytes.clear();
    if (!holdsEveryCharacter(document) && write(document, "UTF-8", 0, bytes) && isGood(bytes, true))
        return bytes;
    throw RunTimeError::deviceError();
}

QString XmlGate::toMarkup(xmlNode *node)
{
    const Silence silence;
    const EscapedDeclarations escapedDeclarations(node);
    QByteArray bytes;
    xmlSaveCtxt *save = saveInto(bytes, "UTF-8", XML_SAVE_NO_DECL);
    if (save == nullptr)
        throw RunTimeError::deviceError();
    xmlSaveTree(save, node);
    xmlSaveClose(save);
    return QString::fromUtf8(bytes);
}

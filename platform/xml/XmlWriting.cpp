// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/RunTimeError.h"
#include "platform/xml/EscapedDeclarations.h"
#include "platform/xml/Silence.h"
#include "platform/xml/XmlGate.h"

#include <libxml/xmlsave.h>

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
bool readsBack(xmlDoc *document, const QByteArray &written, const XmlBounds &bounds)
{
    const XmlDocPtr again = XmlGate::parse(written, bounds);
    if (!again)
        return false;
    const EscapedDeclarations escapedToo(again.get());
    return withoutDeclaration(again.get()) == withoutDeclaration(document);
}

} // namespace

xmlNode *XmlGate::copyInto(xmlDoc *document, const xmlNode *node)
{
    xmlNode *copy = xmlDocCopyNode(const_cast<xmlNode *>(node), document, 1);
    if (copy != nullptr && AddressesToEscape::areIn(node->doc))
        AddressesToEscape::note(document);
    return copy;
}

bool XmlGate::holdsEveryCharacter(const xmlDoc *document)
{
    const auto *encoding = reinterpret_cast<const char *>(document->encoding);
    return encoding == nullptr || qstrnicmp(encoding, "UTF-8", 5) == 0 || qstrnicmp(encoding, "UTF-16", 6) == 0;
}

QByteArray XmlGate::toBytes(xmlDoc *document, const XmlBounds &bounds)
{
    const Silence silence;
    const EscapedDeclarations escapedDeclarations(document);
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
    if (write(document, encoding, 0, bytes) && (holdsEveryCharacter(document) || readsBack(document, bytes, bounds)))
        return bytes;
    bytes.clear();
    if (write(document, "UTF-8", 0, bytes))
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

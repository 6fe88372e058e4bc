// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/ItemWriter.h"

#include "engine/feed/Elements.h"
#include "engine/feed/FeedNamespaces.h"
#include "engine/feed/NamespaceScope.h"
#include "platform/Literals.h"
#include "platform/xml/XmlCharacters.h"

#include <QCryptographicHash>

namespace {

QByteArray writable(const QString &text)
{
    return withoutWhatXmlCannotHold(text).toUtf8();
}

xmlNode *appendTo(xmlNode *parent, xmlNs *ns, const char *name, const QString &text)
{
    xmlNode *element = xmlNewDocNode(parent->doc, ns, xmlText(name), nullptr);
    if (!text.isEmpty())
        xmlAddChild(element, xmlNewDocText(parent->doc, xmlText(writable(text).constData())));
    return xmlAddChild(parent, element);
}

} // namespace

QString ItemWriter::nameFor(const ItemContent &content)
{
    if (!content.link.isEmpty())
        return content.link;
    const QByteArray text = (content.title + u'\n' + content.description).toUtf8();
    return "urn:quillwire:item:"_L1 +
           QString::fromLatin1(QCryptographicHash::hash(text, QCryptographicHash::Sha1).toHex());
}

xmlNode *ItemWriter::add(const char *name, const QString &text)
{
    return text.isEmpty() ? nullptr : addElement(name, text);
}

xmlNode *ItemWriter::addElement(const char *name, const QString &text)
{
    return appendTo(m_item, m_item->ns, name, text);
}

void ItemWriter::addDc(const char *name, const QString &text)
{
    if (!text.isEmpty())
        appendTo(m_item, prefixedNamespace(m_item, NamespaceName::dc, "dc"), name, text);
}

void ItemWriter::addInto(xmlNode *parent, const char *name, const QString &text)
{
    appendTo(parent, parent->ns, name, text);
}

void ItemWriter::setAttribute(xmlNode *element, const char *name, const QString &value, xmlNs *ns)
{
    xmlSetNsProp(element, ns, xmlText(name), xmlText(writable(value).constData()));
}

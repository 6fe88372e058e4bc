#include "engine/feed/ItemWriter.h"

#include "platform/xml/XmlCharacters.h"

namespace {

const xmlChar *chars(const char *text)
{
    return reinterpret_cast<const xmlChar *>(text);
}

QByteArray writable(const QString &text)
{
    return withoutWhatXmlCannotHold(text).toUtf8();
}

xmlNode *appendTo(xmlNode *parent, xmlNs *ns, const char *name, const QString &text)
{
    xmlNode *element = xmlNewDocNode(parent->doc, ns, chars(name), nullptr);
    if (!text.isEmpty())
        xmlAddChild(element, xmlNewDocText(parent->doc, chars(writable(text).constData())));
    return xmlAddChild(parent, element);
}

} // namespace

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
        appendTo(m_item, declaredNamespace(m_item, NamespaceName::dc, "dc", true), name, text);
}

void ItemWriter::addInto(xmlNode *parent, const char *name, const QString &text)
{
    appendTo(parent, parent->ns, name, text);
}

void ItemWriter::setAttribute(xmlNode *element, const char *name, const QString &value)
{
    xmlSetProp(element, chars(name), chars(writable(value).constData()));
}

void ItemWriter::addRssDate(const QString &date)
{
    const bool beginsWithYear =
        date.size() >= 4 && std::all_of(date.begin(), date.begin() + 4, [](QChar c) { return c >= u'0' && c <= u'9'; });
    if (beginsWithYear)
        addDc("date", date);
    else
        add("pubDate", date);
}

// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/JsonFeed.h"

#include "platform/Literals.h"
#include "platform/xml/XmlCharacters.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QXmlStreamWriter>

#include <algorithm>

namespace {

constexpr QLatin1String atomNamespace("http://www.w3.org/2005/Atom");

bool looksLikeJson(const QByteArray &bytes)
{
    QByteArrayView text(bytes);
    if (text.startsWith("\xEF\xBB\xBF"))
        text = text.sliced(3);
    const auto first = std::find_if_not(text.begin(), text.end(), [](char c) { return isXmlBlank(QLatin1Char(c)); });
    return first != text.end() && *first == '{';
}

bool isKnownVersion(const QString &version)
{
    for (const QLatin1String known : {"https://jsonfeed.org/version/1"_L1, "https://jsonfeed.org/version/1.1"_L1,
                                      "http://jsonfeed.org/version/1"_L1, "http://jsonfeed.org/version/1.1"_L1})
        if (version == known)
            return true;
    return false;
}

/// A text; a number as its digits, which ids are at times. "" for everything else.
QString textOf(const QJsonValue &value)
{
    if (value.isDouble())
        return value.toVariant().toString();
    return withoutWhatXmlCannotHold(value.toString());
}

/// The first of these members that says something.
QString firstOf(const QJsonObject &object, std::initializer_list<QLatin1String> names)
{
    for (const QLatin1String name : names)
        if (QString text = textOf(object.value(name)); !text.isEmpty())
            return text;
    return {};
}

/// Writes what there is, and no element for what isn't.
class AtomWriter final
{
public:
    explicit AtomWriter(QByteArray *out) : m_xml(out) {}

    void begin(const QString &name) { m_xml.writeStartElement(name); }
    void end() { m_xml.writeEndElement(); }

    void begin(const QJsonObject &feed)
    {
        m_xml.writeStartDocument();
        m_xml.writeStartElement(u"feed"_s);
        m_xml.writeDefaultNamespace(atomNamespace);
        if (const QString language = textOf(feed.value("language"_L1)); !language.isEmpty())
            m_xml.writeAttribute(u"xml:lang"_s, language);
    }

    void add(const QString &name, const QString &text, const QString &type = {})
    {
        if (text.isEmpty())
            return;
        m_xml.writeStartElement(name);
        if (!type.isEmpty())
            m_xml.writeAttribute(u"type"_s, type);
        m_xml.writeCharacters(text);
        m_xml.writeEndElement();
    }

    /// A link with an address and what else it says; none without an address.
    void addLink(const QString &relation, const QString &address, const QString &type = {}, const QString &length = {})
    {
        if (address.isEmpty())
            return;
        m_xml.writeEmptyElement(u"link"_s);
        m_xml.writeAttribute(u"rel"_s, relation);
        m_xml.writeAttribute(u"href"_s, address);
        if (!type.isEmpty())
            m_xml.writeAttribute(u"type"_s, type);
        if (!length.isEmpty())
            m_xml.writeAttribute(u"length"_s, length);
    }

    void addCategory(const QString &tag)
    {
        m_xml.writeEmptyElement(u"category"_s);
        m_xml.writeAttribute(u"term"_s, tag);
    }

    /// The authors of version 1.1, or else the one of version 1.
    void addAuthors(const QJsonObject &object)
    {
        QJsonArray authors = object.value("authors"_L1).toArray();
        if (authors.isEmpty())
            authors.append(object.value("author"_L1));
        for (const QJsonValue &author : std::as_const(authors)) {
            if (author.toObject().isEmpty())
                continue;
            begin(u"author"_s);
            add(u"name"_s, textOf(author["name"_L1]));
            add(u"uri"_s, textOf(author["url"_L1]));
            end();
        }
    }

private:
    QXmlStreamWriter m_xml;
};

void addItem(AtomWriter &atom, const QJsonObject &item)
{
    atom.begin(u"entry"_s);
    atom.add(u"id"_s, textOf(item.value("id"_L1)));
    atom.add(u"title"_s, textOf(item.value("title"_L1)));
    atom.addLink(u"alternate"_s, firstOf(item, {"url"_L1, "external_url"_L1}));
    atom.addAuthors(item);
    atom.add(u"published"_s, textOf(item.value("date_published"_L1)));
    atom.add(u"updated"_s, textOf(item.value("date_modified"_L1)));
    const QJsonArray tags = item.value("tags"_L1).toArray();
    for (const QJsonValue &tag : tags)
        if (const QString text = textOf(tag); !text.isEmpty())
            atom.addCategory(text);
    atom.add(u"summary"_s, textOf(item.value("summary"_L1)));
    const QString html = textOf(item.value("content_html"_L1));
    if (html.isEmpty())
        atom.add(u"content"_s, textOf(item.value("content_text"_L1)));
    else
        atom.add(u"content"_s, html, u"html"_s);
    const QJsonArray attachments = item.value("attachments"_L1).toArray();
    for (const QJsonValue &attachment : attachments)
        atom.addLink(u"enclosure"_s, textOf(attachment["url"_L1]), textOf(attachment["mime_type"_L1]),
                     textOf(attachment["size_in_bytes"_L1]));
    atom.end();
}

} // namespace

QByteArray JsonFeed::toAtom(const QByteArray &bytes)
{
    if (!looksLikeJson(bytes))
        return {};
    const QJsonObject feed = QJsonDocument::fromJson(bytes).object();
    if (!isKnownVersion(feed.value("version"_L1).toString()))
        return {};
    QByteArray out;
    AtomWriter atom(&out);
    atom.begin(feed);
    atom.add(u"title"_s, textOf(feed.value("title"_L1)));
    atom.add(u"subtitle"_s, textOf(feed.value("description"_L1)));
    atom.addLink(u"alternate"_s, textOf(feed.value("home_page_url"_L1)));
    atom.addLink(u"self"_s, textOf(feed.value("feed_url"_L1)));
    atom.add(u"id"_s, firstOf(feed, {"feed_url"_L1, "home_page_url"_L1}));
    atom.add(u"logo"_s, textOf(feed.value("icon"_L1)));
    atom.add(u"icon"_s, textOf(feed.value("favicon"_L1)));
    atom.addAuthors(feed);
    const QJsonArray items = feed.value("items"_L1).toArray();
    for (const QJsonValue &item : items)
        if (item.isObject())
            addItem(atom, item.toObject());
    atom.end();
    return out;
}

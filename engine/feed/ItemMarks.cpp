// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/ItemMarks.h"

#include "engine/feed/ElementText.h"
#include "engine/feed/Elements.h"
#include "engine/feed/NamespaceScope.h"
#include "platform/Literals.h"

namespace {

constexpr const char *readName = "read";
constexpr const char *deletedName = "deleted";
constexpr const char *downloadedName = "downloaded";

void set(xmlNode *item, const char *name, const QString &value)
{
    xmlNs *ns = prefixedNamespace(item, ItemMarks::space, "quillwire");
    xmlSetNsProp(item, ns, xmlText(name), xmlText(value.toUtf8().constData()));
}

bool isSet(const xmlNode *item, const char *name)
{
    return attributeOf(item, name, ItemMarks::space) == "1"_L1;
}

} // namespace

bool ItemMarks::isRead(const xmlNode *item)
{
    return isSet(item, readName);
}

bool ItemMarks::isDeleted(const xmlNode *item)
{
    return isSet(item, deletedName);
}

std::string_view ItemMarks::downloadMark(const xmlNode *item)
{
    for (const xmlAttr *attribute = item->properties; attribute != nullptr; attribute = attribute->next)
        if (viewOf(attribute->name) == downloadedName && nameOf(attribute->ns) == space)
            return attribute->children == nullptr ? std::string_view() : viewOf(attribute->children->content);
    return {};
}

QDateTime ItemMarks::downloadDate(std::string_view mark)
{
    const QString text = trimmedText(QString::fromUtf8(mark.data(), static_cast<qsizetype>(mark.size())));
    const QDateTime when = QDateTime::fromString(text, Qt::ISODate).toLocalTime();
    // A feed may bring marks of its own making; a year past four digits has no text that reads back.
    return when.isValid() && when.date().year() >= 100 && when.date().year() <= 9999 ? when : QDateTime();
}

void ItemMarks::setRead(xmlNode *item, bool read)
{
    if (read != isRead(item))
        set(item, readName, read ? u"1"_s : u"0"_s);
}

void ItemMarks::setDeleted(xmlNode *item)
{
    set(item, deletedName, u"1"_s);
}

void ItemMarks::setDownloadMark(xmlNode *item, const QString &mark)
{
    set(item, downloadedName, mark);
}

QString ItemMarks::markOf(const QDateTime &when)
{
    return when.toUTC().toString(Qt::ISODate);
}

void ItemMarks::clear(xmlNode *item)
{
    xmlAttr *attribute = item->properties;
    while (attribute != nullptr) {
        xmlAttr *next = attribute->next;
        if (nameOf(attribute->ns) == space)
            xmlRemoveProp(attribute);
        attribute = next;
    }
}

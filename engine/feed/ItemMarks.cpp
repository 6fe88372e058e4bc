#include "engine/feed/ItemMarks.h"

#include "engine/feed/ElementText.h"
#include "engine/feed/FeedNamespaces.h"

#include <cstring>

namespace {

constexpr const char *marks = "urn:quillwire:marks";
constexpr const char *readName = "read";
constexpr const char *deletedName = "deleted";
constexpr const char *downloadedName = "downloaded";

void set(xmlNode *item, const char *name, const QString &value)
{
    xmlNs *ns = declaredNamespace(item, marks, "quillwire", true);
    xmlSetNsProp(item, ns, reinterpret_cast<const xmlChar *>(name),
                 reinterpret_cast<const xmlChar *>(value.toUtf8().constData()));
}

bool isSet(const xmlNode *item, const char *name)
{
    return attributeOf(item, name, marks) == QLatin1String("1");
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

QString ItemMarks::downloadMark(const xmlNode *item)
{
    return attributeOf(item, downloadedName, marks);
}

QDateTime ItemMarks::downloadDate(const QString &mark)
{
    const QDateTime when = QDateTime::fromString(mark, Qt::ISODate).toLocalTime();
    // A feed may bring marks of its own making; a year past four digits has no text that reads back.
    return when.isValid() && when.date().year() >= 100 && when.date().year() <= 9999 ? when : QDateTime();
}

void ItemMarks::setRead(xmlNode *item, bool read)
{
    if (read != isRead(item))
        set(item, readName, read ? QStringLiteral("1") : QStringLiteral("0"));
}

void ItemMarks::setDeleted(xmlNode *item)
{
    set(item, deletedName, QStringLiteral("1"));
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
        if (attribute->ns != nullptr && attribute->ns->href != nullptr &&
            std::strcmp(reinterpret_cast<const char *>(attribute->ns->href), marks) == 0)
            xmlRemoveProp(attribute);
        attribute = next;
    }
}

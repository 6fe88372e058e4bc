#pragma once

#include <QDateTime>

#include <libxml/tree.h>

/// What this program notes about an item, in attributes of a namespace of its own on the item's element. docs/marks.md
/// says how they look and why.
namespace ItemMarks {

bool isRead(const xmlNode *item);
bool isDeleted(const xmlNode *item);

/// The date of download in local time; not valid when the item bears none, or one that isn't to be read.
QDateTime downloadDate(const xmlNode *item);

void setRead(xmlNode *item, bool read);
void setDeleted(xmlNode *item);
void setDownloadDate(xmlNode *item, const QDateTime &when);

/// Takes all marks off the item.
void clear(xmlNode *item);

} // namespace ItemMarks

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QDateTime>

#include <libxml/tree.h>

#include <string_view>

/// What this program notes about an item, in attributes of a namespace of its own on the item's element. docs/marks.md
/// says how they look and why.
namespace ItemMarks {

/// The name of the namespace.
inline constexpr const char *space = "urn:quillwire:marks";

bool isRead(const xmlNode *item);
bool isDeleted(const xmlNode *item);

/// The date of download as the item's mark writes it, in UTF-8; "" when the item bears none. It is the item's own text,
/// so that items whose marks are alike are told without making texts.
std::string_view downloadMark(const xmlNode *item);

/// The date that such a mark stands for, in local time; not valid when it isn't to be read.
QDateTime downloadDate(std::string_view mark);

void setRead(xmlNode *item, bool read);
void setDeleted(xmlNode *item);
void setDownloadMark(xmlNode *item, const QString &mark);

/// The mark that stands for a date, to the second.
QString markOf(const QDateTime &when);

/// Takes all marks off the item.
void clear(xmlNode *item);

} // namespace ItemMarks

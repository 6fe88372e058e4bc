// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>

/// Feeds of any length, with items of about 1.5 KB as feeds have them: title, link, markup, author, subjects, date.
namespace GeneratedFeeds {

QByteArray rss20(int items);
QByteArray rdf10(int items);
QByteArray atom03(int items);

} // namespace GeneratedFeeds

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>

/// Feeds with the small faults that the web is full of, read as browsers read them: text in front of the document and
/// behind it, bare ampersands and entities of HTML, end tags that are missing or don't match, attributes without quotes
/// or given twice, a document that is cut off, bytes of windows-1252 under the label of Latin-1 or among UTF-8.
namespace FeedRepair {

/// The document in UTF-8, without the fault. Whether it is well-formed then is for the parser to tell. Null bytes when
/// there is no document in it, or one that is nested too deeply. Takes time that grows with the length only.
QByteArray mended(const QByteArray &bytes);

/// True for bytes that say they are Latin-1 or ASCII and hold characters that only windows-1252 has.
bool isMislabelled(const QByteArray &bytes);

} // namespace FeedRepair

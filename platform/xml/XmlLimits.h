// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtGlobal>

/// What a document may have of each. The library compares and searches in plain loops, so that a small document with
/// very many of one kind would hold the thread for seconds; with these no megabyte does. Real documents have a tenth of
/// each at most.
namespace XmlLimits {

/// Attributes of one element, each of which is compared with every other.
inline constexpr int attributes = 512;

/// Declarations of namespaces that are in force at one place, and looked through for every name there.
inline constexpr int declarations = 256;

/// Bytes of the prefix, and of the address, of one of them. With `tag` and the number of them that keeps the longest
/// tag within the ten million bytes that the library looks ahead, whoever writes it.
inline constexpr int prefix = 256;
inline constexpr int address = 2048;

/// Bytes of the attributes of one tag, names included, as they are written at worst.
inline constexpr qint64 tag = 6000000;

/// Attributes that a document type declares for all elements together: each default is compared with every attribute of
/// each of its elements.
inline constexpr int attributeDeclarations = 256;

/// Attributes and declarations of namespaces that elements have by default, in the whole document.
inline constexpr int defaulted = 100000;

/// Different names, counting all that the library's dictionary holds: from some thousands on its table doesn't grow any
/// more, and each name is compared with more others.
inline constexpr int names = 20000;

/// Bytes of a piece of text in one node; longer texts lie in several. The library refuses nodes past ten million.
inline constexpr int pieceOfText = 8000000;

/// How near to a bound a document has to be tried before it counts as read: more than what marks add to it.
inline constexpr int margin = 16;
inline constexpr int marginOfNames = 500;
inline constexpr qint64 marginOfTag = 10000;

} // namespace XmlLimits

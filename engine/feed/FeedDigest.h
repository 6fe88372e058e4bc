// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/feed/FormatReader.h"

#include <QByteArray>

#include <span>

/// What a feed must still say once it was written: that it is a document of its format, and its items in their order
/// with their marks and titles. It is a number, so that a tree and the bytes written from it are compared without
/// making a second tree.
namespace FeedDigest {

/// That of a tree, whose items are these.
quint64 ofTree(const xmlNode *root, const FormatReader &reader, std::span<const xmlNode *const> items);

/// Whether the bytes are well-formed, within the bounds of feeds, and have that digest.
bool isOfBytes(quint64 digest, const QByteArray &bytes, const FormatReader &reader);

} // namespace FeedDigest

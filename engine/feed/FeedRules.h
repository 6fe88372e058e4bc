// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/feed/ItemAddresses.h"
#include "platform/Choice.h"

/// Formats of feeds, each with the elements that its fields are read from.
class FormatSet;

/// RSS 0.91, 0.92 and 2.0, RDF Site Summary 1.0 and Atom 0.3.
const FormatSet &usualFormats();

/// Those, Atom 1.0 (RFC 4287), RSS 0.90, 0.93, 0.94, 1.1, 2.01, 2.1 and without version, and JSON Feed 1.0 and 1.1,
/// which is turned into Atom 1.0. What an item says in the media and iTunes namespaces stands in for a missing
/// enclosure and author.
const FormatSet &allFormats();

/// How the bytes of a document are read.
class FeedReading;

/// What isn't well-formed is no feed.
const FeedReading &exactReading();

/// Small faults, which the web is full of, are mended first.
const FeedReading &mendingReading();

/// By which rules feed documents are read.
struct FeedRules
{
    Choice<FormatSet> formats = usualFormats();
    Choice<FeedReading> reading = exactReading();
    Choice<ItemAddresses> addresses = writtenAddresses();
};

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

class FeedDocument;

/// Marks on their way into the file that took the place of a document's own.
namespace MarkCarrying {

/// Sets in `newer`, which was just loaded, the read and deleted marks that were changed in `older` since it was loaded
/// or saved. An item is known by its title; of several with one title the n-th that isn't deleted answers to the n-th.
/// Items of `newer` that bear no date of download get none: no save went over them, so that they came straight from a
/// server and may be those of another feed. False when nothing changed in `newer`. Linear in the items of both.
bool carry(const FeedDocument &older, FeedDocument &newer);

} // namespace MarkCarrying

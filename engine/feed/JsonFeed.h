// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>

/// JSON Feed, versions 1 and 1.1.
namespace JsonFeed {

/// The feed as a document of Atom 1.0 that says the same, as far as a reader of feeds has a use for it; null bytes for
/// what is no JSON Feed.
QByteArray toAtom(const QByteArray &bytes);

} // namespace JsonFeed

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/xml/XmlGate.h"

namespace FeedReading {

/// The tree of a document that can be saved and read again, whatever it is; null for one that isn't well-formed, goes
/// past a bound, or would do so once its items bear all marks.
XmlDocPtr read(const QByteArray &bytes);

} // namespace FeedReading

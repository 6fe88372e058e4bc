// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/feed/FeedFormats.h"
#include "platform/xml/XmlGate.h"

class FeedReading final
{
public:
    struct Outcome
    {
        XmlDocPtr tree; ///< null for a document that isn't read
        bool isRepaired = false;
    };

    /// Reads a document that can be saved and read again, whatever it is. None that isn't well-formed, goes past a
    /// bound, or would do so once its items bear all marks.
    using Read = Outcome (*)(const QByteArray &bytes, const FormatSet &formats);

    explicit constexpr FeedReading(Read way) : m_read(way) {}

    Outcome read(const QByteArray &bytes, const FormatSet &formats) const { return m_read(bytes, formats); }

private:
    Read m_read;
};

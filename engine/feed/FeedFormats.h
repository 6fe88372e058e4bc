// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/feed/FeedRules.h"
#include "engine/feed/FormatReader.h"

/// Tells what a well-formed document is, and with LoadOk the reader of its format, which lives as long as the program.
struct Recognised
{
    FeedLoadResult result;
    const FormatReader *reader = nullptr;
};

class FormatSet final
{
public:
    /// The bytes of a feed that isn't XML as a document of one of the formats; null bytes for those of any other.
    using Translation = QByteArray (*)(const QByteArray &bytes);

    /// `translation` may be null.
    FormatSet(std::vector<FormatReader> readers, Translation translation)
        : m_readers(std::move(readers)), m_translation(translation)
    {}

    Recognised recognise(const xmlDoc *document) const;

    /// What the bytes say as XML, where they are a feed that isn't; otherwise null bytes.
    QByteArray translated(const QByteArray &bytes) const
    {
        return m_translation == nullptr ? QByteArray() : m_translation(bytes);
    }

private:
    std::vector<FormatReader> m_readers;
    Translation m_translation;
};

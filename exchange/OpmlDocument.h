// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QString>

#include <memory>
#include <optional>
#include <vector>

class XmlDocument;

/// An OPML document, as far as the import reads it: `opml`, `head/title`, and the outlines right below `body` that bear
/// an `xmlUrl`. Outlines within outlines aren't seen, other attributes than those named here mean nothing, and names
/// are told with case.
class OpmlDocument final
{
public:
    struct Feed
    {
        int position;    ///< among all outlines right below `body`, those without an address counted too
        QString text;    ///< attribute `text`
        QString address; ///< attribute `xmlUrl`
    };

    /// What the document offers for subscription.
    struct List
    {
        QString title;
        std::vector<Feed> feeds;
    };

    OpmlDocument();
    ~OpmlDocument();
    OpmlDocument(const OpmlDocument &) = delete;
    OpmlDocument &operator=(const OpmlDocument &) = delete;

    /// Replaces the content by that of the file. False, with nothing in the document, when there is no such file, when
    /// it can't be read and when it isn't well-formed XML. It isn't yet known to be OPML: see list().
    bool load(const QString &path);

    /// Likewise from bytes in memory.
    bool loadXml(const QByteArray &bytes);

    /// The title and the feeds, in the order of the document. Nothing when the document isn't the OPML that is read:
    /// one of the nodes is missing, or a feed has no `text`.
    std::optional<List> list() const;

    /// The attribute `description` of the outline at that position; "/" when it has none. Throws objectNotSet() when
    /// there is no such outline.
    QString description(int position) const;

private:
    std::unique_ptr<XmlDocument> m_document; ///< never null
};

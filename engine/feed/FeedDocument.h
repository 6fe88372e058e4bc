// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/feed/FormatReader.h"
#include "platform/xml/XmlGate.h"

#include <QDateTime>

#include <optional>
#include <string>
#include <vector>

/// One loaded document: its tree, its format, and its items by index.
class FeedDocument final
{
public:
    /// `written` is when the document's file was last written.
    FeedDocument(XmlDocPtr tree, const FormatReader &reader, QDateTime written);
    FeedDocument(const FeedDocument &) = delete;
    FeedDocument &operator=(const FeedDocument &) = delete;
    ~FeedDocument();

    const FormatReader &reader() const { return m_reader; }
    const ChildElements &channel() const { return m_channel; }
    QString writtenVersion() const { return m_reader.writtenVersion(m_root); }

    /// True when an element of that namespace occurs anywhere.
    bool uses(NamespaceTest isWanted) const;

    /// All items, those too that are past the last index that can be offered.
    qsizetype itemCount() const
    {
        return static_cast<qsizetype>(m_added.size()) + static_cast<qsizetype>(m_items.size());
    }
    xmlNode *item(qsizetype index) const { return entry(index).node; }
    ItemElements itemElements(qsizetype index) const;

    /// When the item was downloaded, as DateText writes it.
    QString downloadDate(qsizetype index) const;
    void markForRemoval(qsizetype index) { entry(index).removed = true; }

    /// Which marks of an item are others than when the document was loaded or forgetMarkChanges() was called.
    struct MarkChanges
    {
        bool read = false;
        bool deleted = false;
    };
    void setRead(qsizetype index, bool read);
    void setDeleted(qsizetype index);
    MarkChanges markChanges(qsizetype index) const { return entry(index).changes; }
    bool marksChanged() const { return m_marksChanged; }
    void forgetMarkChanges();

    /// Takes a copy of the item in, behind those added since the document was loaded or saved, in front of all others.
    /// False when there is no room for it.
    bool add(const FeedDocument &from, const xmlNode *node, const QDateTime &now);

    /// Drops the items marked for removal and those that are past the last index, notes the date of download in those
    /// that bear none, and returns the bytes, which were read back. Throws RunTimeError::deviceError() when they don't
    /// say what the document does.
    QByteArray prepareForSaving();

private:
    struct Entry
    {
        xmlNode *node;
        mutable std::unique_ptr<ChildElements> elements; ///< found when first asked for
        bool removed = false;
        MarkChanges changes = {};
    };

    /// The date that a mark stands for; that of the file when the mark isn't to be read.
    struct NotedDate
    {
        std::string mark; ///< as it stands
        bool readable;
        QString text;
    };

    const NotedDate &notedDate(const xmlNode *item) const;
    const Entry &entry(qsizetype index) const;
    Entry &entry(qsizetype index) { return const_cast<Entry &>(std::as_const(*this).entry(index)); }
    void readChildren();
    xmlNode *itemParent();
    void insert(xmlNode *item);
    void settleItems();
    std::vector<xmlNode *> takeOutRemovedItems();

    XmlDocPtr m_tree;
    const FormatReader &m_reader;
    QDateTime m_written;
    mutable std::optional<NotedDate> m_notedDate; ///< that of the item asked for last
    xmlNode *m_root;
    ChildElements m_channel;
    std::vector<Entry> m_items; ///< those that were there when the document was loaded or saved
    std::vector<Entry> m_added; ///< those added since, which stand in front
    QDateTime m_addedAt;        ///< when the last item was added, and its mark
    QString m_addedMark;
    bool m_marksChanged = false;      ///< those of any item
    std::vector<xmlNode *> m_dropped; ///< outside the tree; FeedItems may still name them
};

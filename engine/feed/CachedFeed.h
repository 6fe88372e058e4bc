// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/feed/FeedRules.h"
#include "engine/feed/FeedTypes.h"
#include "platform/FileStamp.h"
#include "platform/Waiting.h"

#include <memory>
#include <optional>

class FeedItem;
class FeedDocument;

/// A feed document of one of the formats of its rules, behind one view of its channel and items.
///
/// The document is held as a tree; access by index takes constant time. Beside what the feed says each item bears three
/// marks: read, deleted (a tombstone) and the date of download, kept in attributes of a namespace of this program on
/// the item element, so that they survive Save() and a later Load(), while other readers pass over them.
///
/// No text field fails: what a feed doesn't give is "". Indices count from 0 in document order up to ItemCount() - 1;
/// an index outside is tolerated: it gives "", false, or does nothing. No exception but a failed Save() leaves this
/// class. Loading touches neither the network nor another file.
class CachedFeed
{
public:
    /// `clock` gives the date of download of added items.
    explicit CachedFeed(Clock clock = Waiting::systemClock(), FeedRules rules = {});
    CachedFeed(const CachedFeed &) = delete;
    CachedFeed &operator=(const CachedFeed &) = delete;
    ~CachedFeed();

    bool HasDc() const;      ///< An element of the Dublin Core namespace occurs.
    bool HasWfw() const;     ///< Likewise the wfw (comment API) namespace.
    bool HasContent() const; ///< Likewise the RSS content module.
    bool HasItunes() const;  ///< Likewise the iTunes podcast namespace.

    /// Reads and recognises the file at `path` and replaces the document held. After any result but LoadOk the instance
    /// holds nothing. A feed that isn't XML is held as it was translated, and the file is as it was until a Save().
    FeedLoadResult Load(const QString &path);

    /// Writes the document back to the path of the last successful Load(), in one step, in its own encoding and with
    /// all that this class doesn't know. Items taken out by RemoveItem() are dropped here, and the indices behind
    /// them move up; then those past the last index are dropped. Items that bear no date of download are given the one
    /// that ItemDownloadDate() tells. What was written is read back before it takes the file's place. Does nothing when
    /// nothing is held. Throws the RunTimeErrors of Files::write(), and RunTimeError::deviceError() when what was
    /// written doesn't load with the same items, marks and titles; the file is then unchanged, what is held stays
    /// usable.
    ///
    /// A stale document leaves the newer file as it is but for the read and deleted marks that were changed since
    /// Load() or the last Save(): they are set there, by title, and nothing is written when there is none to set, when
    /// the newer file doesn't load or is a download, or when the file was deleted.
    void Save();

    /// Writes the document to its path, whatever has come there since. Throws as Save().
    void Restore();

    /// Save() of a document that isn't stale, unless the file would grow past `most` bytes. False when nothing was
    /// written.
    bool SaveWithin(qint64 most);

    /// Lets the marks that were changed so far be no news: once the document is stale a Save() carries later ones only.
    void GiveUpMarks();

    bool IsLoaded() const;
    QString Path() const { return m_path; } ///< That of the last successful Load(); "" when nothing is held.

    /// True when the file was replaced or deleted since Load() or the last Save().
    bool IsStale() const;
    FeedVersion Version() const;
    QString WrittenVersion() const; ///< As the document writes it; "" when Version() tells it, or nothing does.
    bool IsRepaired() const;        ///< The file has faults that what is held hasn't.
    bool IsTranslated() const;      ///< The file is in another format than what is held.

    /// The address that the document came from, for what is relative to it. Load() forgets it.
    void SetAddress(const QString &address) { m_address = address; }
    QString Address() const { return m_address; }

    QString Title() const;
    QString Link() const;
    QString Description() const;
    QString Language() const;
    bool GetImage(FeedImage &image) const; ///< False when the channel has no picture; `image` is then unchanged.
    QString Copyright() const;
    QString ManagingEditor() const;
    QString WebMaster() const;
    QString Ttl() const; ///< Minutes between updates as the feed proposes them, as it writes them.

    /// Number of items, deleted ones included, at most 32767; what a document holds past that isn't offered.
    qint16 ItemCount() const;

    /// The item's node, to be handed to AddItem() of another instance, whose copy it is. It keeps its document alive.
    std::shared_ptr<const FeedItem> GetItemNode(qint16 index) const;

    /// Takes a copy of an item of another document into this one, without its marks and with now as date of download.
    /// An item of another format is carried over into this document's own format. Items added one after the other stand
    /// in front of those that were there before, in the order in which they were added: after n additions the item that
    /// stood at index p stands at p + n. A Save() ends such a run: what is added after it stands in front of all.
    /// False, and nothing is added, for an item that couldn't be written so that it is read again: one with addresses
    /// of hundreds of kilobytes that would come to stand in attributes, or with more names or namespaces than the
    /// document has room for.
    bool AddItem(const std::shared_ptr<const FeedItem> &node);

    QString ItemTitle(qint16 index) const;
    QString ItemLink(qint16 index) const;
    QString ItemDescription(qint16 index) const;
    bool GetItemSource(qint16 index, ItemSource &source) const;
    bool GetItemEnclosure(qint16 index, ItemEnclosure &enclosure) const;
    QString ItemCategory(qint16 index) const;
    QString ItemAuthor(qint16 index) const;
    QString ItemComments(qint16 index) const;
    QString ItemPubDate(qint16 index) const; ///< The date exactly as the feed writes it.

    /// Takes an item out for good at the next Save(); until then indices and ItemCount() stay.
    void RemoveItem(qint16 index);

    bool IsItemRead(qint16 index) const;
    bool IsItemDeleted(qint16 index) const;

    /// When the item was downloaded, as DateText writes it; for an item that bears no date, when its file was last
    /// written.
    QString ItemDownloadDate(qint16 index) const;

    void SetItemRead(qint16 index, bool read); ///< In memory only.
    void DeleteItem(qint16 index);             ///< Sets the deleted mark, in memory only; the index stays valid.

private:
    bool holds(qint16 index) const;
    QString base(qint16 index, bool isOfLink) const;
    QString whole(const QString &address, qint16 index) const;
    void write(const QByteArray &bytes);
    void carryMarks();

    Clock m_clock;
    FeedRules m_rules;
    QString m_path;
    QString m_address;
    std::optional<FileStamp> m_stamp; ///< of the file that holds what is held but for changes in memory
    bool m_isTranslated = false;
    bool m_isRepaired = false;
    std::shared_ptr<FeedDocument> m_document; ///< null when nothing is held
};

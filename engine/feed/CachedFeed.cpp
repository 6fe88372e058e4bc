// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/CachedFeed.h"

#include "engine/feed/BaseAddress.h"
#include "engine/feed/FeedDocument.h"
#include "engine/feed/FeedFormats.h"
#include "engine/feed/FeedItem.h"
#include "engine/feed/FeedReading.h"
#include "engine/feed/ItemMarks.h"
#include "engine/feed/MarkCarrying.h"
#include "platform/DateText.h"
#include "platform/Files.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <limits>

CachedFeed::CachedFeed(Clock clock, FeedRules rules) : m_clock(std::move(clock)), m_rules(rules) {}

CachedFeed::~CachedFeed() = default;

bool CachedFeed::HasDc() const
{
    return m_document && m_document->uses(isDublinCore);
}

bool CachedFeed::HasWfw() const
{
    return m_document && m_document->uses(isCommentApi);
}

bool CachedFeed::HasContent() const
{
    return m_document && m_document->uses(isContentModule);
}

bool CachedFeed::HasItunes() const
{
    return m_document && m_document->uses(isItunes);
}

FeedLoadResult CachedFeed::Load(const QString &path)
{
    m_document.reset();
    m_path.clear();
    m_address.clear();
    m_isTranslated = m_isRepaired = false;
    const FormatSet &formats = *m_rules.formats;
    const std::optional<FileStamp> stamp = FileStamp::of(path); // first: a file replaced meanwhile is a later one
    const QDateTime written = QFileInfo(path).lastModified();
    XmlDocPtr tree;
    {
        const Files::Content content = Files::read(path);
        if (content.result != Files::ReadResult::Read)
            return LoadFileNotFound;
        const QByteArray translated = formats.translated(content.bytes);
        m_isTranslated = !translated.isNull();
        FeedReading::Outcome outcome = m_rules.reading->read(m_isTranslated ? translated : content.bytes, formats);
        m_isRepaired = outcome.isRepaired;
        tree = std::move(outcome.tree);
    }
    if (!tree)
        return LoadNotAFeed;
    const Recognised recognised = formats.recognise(tree.get());
    if (recognised.result != LoadOk)
        return recognised.result;
    m_document =
        std::make_shared<FeedDocument>(std::move(tree), *recognised.reader, written.isValid() ? written : m_clock());
    m_path = path;
    m_stamp = stamp;
    return LoadOk;
}

void CachedFeed::Save()
{
    if (!m_document)
        return;
    if (IsStale())
        carryMarks();
    else
        write(m_document->prepareForSaving());
}

void CachedFeed::Restore()
{
    if (m_document)
        write(m_document->prepareForSaving());
}

bool CachedFeed::SaveWithin(qint64 most)
{
    if (!m_document || IsStale())
        return false;
    const QByteArray bytes = m_document->prepareForSaving();
    if (bytes.size() > std::max(most, m_stamp ? m_stamp->size : 0))
        return false;
    write(bytes);
    return true;
}

bool CachedFeed::IsStale() const
{
    if (!m_document)
        return false;
    const std::optional<FileStamp> stamp = FileStamp::of(m_path);
    // Where the folder is gone with the file nobody has deleted a feed: a save is tried, and fails aloud.
    return stamp != m_stamp && (stamp || QFileInfo(m_path).dir().exists());
}

void CachedFeed::write(const QByteArray &bytes)
{
    Files::write(m_path, bytes);
    m_stamp = FileStamp::of(m_path);
    m_isTranslated = m_isRepaired = false;
    m_document->forgetMarkChanges();
}

void CachedFeed::GiveUpMarks()
{
    if (m_document)
        m_document->forgetMarkChanges();
}

/// Saves what was marked since the document was loaded or saved, and nothing else, into the file that took its place.
/// The document stays what it is: rows of a list name its items by their indices.
void CachedFeed::carryMarks()
{
    if (!m_document->marksChanged())
        return;
    CachedFeed newer(m_clock, m_rules);
    if (newer.Load(m_path) != LoadOk || !MarkCarrying::carry(*m_document, *newer.m_document))
        return;
    newer.Save();
    m_document->forgetMarkChanges();
}

bool CachedFeed::IsLoaded() const
{
    return m_document != nullptr;
}

FeedVersion CachedFeed::Version() const
{
    return m_document ? m_document->reader().format().version : Rss091;
}

QString CachedFeed::WrittenVersion() const
{
    return m_document ? m_document->writtenVersion() : QString();
}

bool CachedFeed::IsRepaired() const
{
    return m_document && m_isRepaired;
}

bool CachedFeed::IsTranslated() const
{
    return m_document && m_isTranslated;
}

static QString channelText(const std::shared_ptr<FeedDocument> &document, ChannelField field)
{
    return document ? document->reader().text(field, document->channel()) : QString();
}

QString CachedFeed::Title() const
{
    return channelText(m_document, ChannelField::Title);
}

QString CachedFeed::Link() const
{
    return channelText(m_document, ChannelField::Link);
}

QString CachedFeed::Description() const
{
    return channelText(m_document, ChannelField::Description);
}

QString CachedFeed::Language() const
{
    return channelText(m_document, ChannelField::Language);
}

/// Hands what was found to the caller's record, which stays as it is when there was nothing.
template <class Record>
static bool handOver(std::optional<Record> found, Record &record)
{
    if (!found)
        return false;
    record = *std::move(found);
    return true;
}

bool CachedFeed::GetImage(FeedImage &image) const
{
    return m_document && handOver(m_document->reader().image(m_document->channel()), image);
}

QString CachedFeed::Copyright() const
{
    return channelText(m_document, ChannelField::Copyright);
}

QString CachedFeed::ManagingEditor() const
{
    return channelText(m_document, ChannelField::ManagingEditor);
}

QString CachedFeed::WebMaster() const
{
    return channelText(m_document, ChannelField::WebMaster);
}

QString CachedFeed::Ttl() const
{
    return channelText(m_document, ChannelField::Ttl);
}

qint16 CachedFeed::ItemCount() const
{
    constexpr qsizetype most = std::numeric_limits<qint16>::max();
    return m_document ? static_cast<qint16>(std::min(m_document->itemCount(), most)) : qint16(0);
}

bool CachedFeed::holds(qint16 index) const
{
    return index >= 0 && index < ItemCount();
}

std::shared_ptr<const FeedItem> CachedFeed::GetItemNode(qint16 index) const
{
    return holds(index) ? std::make_shared<const FeedItem>(m_document, m_document->item(index)) : nullptr;
}

bool CachedFeed::AddItem(const std::shared_ptr<const FeedItem> &node)
{
    return m_document && node && m_document->add(node->document(), node->node(), m_clock());
}

static QString itemText(const FeedDocument &document, qint16 index, ItemField field)
{
    return document.reader().text(field, document.itemElements(index));
}

QString CachedFeed::ItemTitle(qint16 index) const
{
    return holds(index) ? itemText(*m_document, index, ItemField::Title) : QString();
}

/// What the addresses of the item are relative to: its own base, its link, the feed's link, the feed's address, the
/// first of these that there is, itself made whole by those behind it. For the link that is to say all but itself.
QString CachedFeed::base(qint16 index, bool isOfLink) const
{
    const QString link = isOfLink ? QString() : itemText(*m_document, index, ItemField::Link);
    QString base = m_address;
    for (const QString &nearer : {Link(), link, BaseAddress::of(m_document->item(index))})
        if (!nearer.isEmpty())
            base = BaseAddress::resolvedAgainst(base, nearer);
    return base;
}

QString CachedFeed::whole(const QString &address, qint16 index) const
{
    return m_rules.addresses->address(address, [&] { return base(index, false); });
}

QString CachedFeed::ItemLink(qint16 index) const
{
    if (!holds(index))
        return {};
    return m_rules.addresses->address(itemText(*m_document, index, ItemField::Link), [&] { return base(index, true); });
}

QString CachedFeed::ItemDescription(qint16 index) const
{
    if (!holds(index))
        return {};
    return m_rules.addresses->markup(itemText(*m_document, index, ItemField::Description),
                                     [&] { return base(index, false); });
}

bool CachedFeed::GetItemSource(qint16 index, ItemSource &source) const
{
    return holds(index) && handOver(m_document->reader().source(m_document->itemElements(index)), source);
}

bool CachedFeed::GetItemEnclosure(qint16 index, ItemEnclosure &enclosure) const
{
    if (!holds(index) || !handOver(m_document->reader().enclosure(m_document->itemElements(index)), enclosure))
        return false;
    enclosure.Url = whole(enclosure.Url, index);
    return true;
}

QString CachedFeed::ItemCategory(qint16 index) const
{
    return holds(index) ? itemText(*m_document, index, ItemField::Category) : QString();
}

QString CachedFeed::ItemAuthor(qint16 index) const
{
    return holds(index) ? itemText(*m_document, index, ItemField::Author) : QString();
}

QString CachedFeed::ItemComments(qint16 index) const
{
    return holds(index) ? whole(itemText(*m_document, index, ItemField::Comments), index) : QString();
}

QString CachedFeed::ItemPubDate(qint16 index) const
{
    return holds(index) ? itemText(*m_document, index, ItemField::PubDate) : QString();
}

void CachedFeed::RemoveItem(qint16 index)
{
    if (holds(index))
        m_document->markForRemoval(index);
}

bool CachedFeed::IsItemRead(qint16 index) const
{
    return holds(index) && ItemMarks::isRead(m_document->item(index));
}

bool CachedFeed::IsItemDeleted(qint16 index) const
{
    return holds(index) && ItemMarks::isDeleted(m_document->item(index));
}

QString CachedFeed::ItemDownloadDate(qint16 index) const
{
    return holds(index) ? m_document->downloadDate(index) : QString();
}

void CachedFeed::SetItemRead(qint16 index, bool read)
{
    if (holds(index))
        m_document->setRead(index, read);
}

void CachedFeed::DeleteItem(qint16 index)
{
    if (holds(index))
        m_document->setDeleted(index);
}

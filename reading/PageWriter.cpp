// SPDX-License-Identifier: GPL-3.0-or-later

#include "reading/PageWriter.h"

#include "platform/DateText.h"
#include "platform/Files.h"
#include "platform/Literals.h"
#include "platform/Numbers.h"
#include "reading/Integers.h"

#include <utility>

namespace {

constexpr QLatin1String lineBreak("\r\n");

/// Pixels of a channel's picture: the size that stands in for a missing one, and the largest that is written. Each side
/// is cut on its own: the head of the page has room for so much, and a tall picture is squeezed into it.
constexpr qint16 defaultImageWidth = 88;
constexpr qint16 defaultImageHeight = 31;
constexpr qint16 maxImageWidth = 144;
constexpr qint16 maxImageHeight = 400;

constexpr qint16 noSize = -1;
constexpr qint32 unitStep = 1024;

QString sizeText(qint16 size, qint16 standIn, qint16 largest)
{
    return QString::number(size == noSize ? standIn : MinInt(size, largest));
}

QString imagePieces(const FeedImage &image, const PageText &its)
{
    QString text = u"<a href=\"" % image.Link % u"\">";
    text += u"<img src=\"" % image.Url % u"\"";
    text += u" alt=\"" % its.wide(image.Title) % u"\"";
    text += u" width=\"" % sizeText(image.Width, defaultImageWidth, maxImageWidth) % u"\"";
    text += u" height=\"" % sizeText(image.Height, defaultImageHeight, maxImageHeight) % u"\"";
    if (!image.Description.isEmpty())
        text += u" title=\"" % its.wide(image.Description) % u"\"";
    return text % u" /></a>";
}

qint32 nextUnit(qint32 size)
{
    return Numbers::roundToInt32(static_cast<double>(size) / unitStep);
}

} // namespace

PageWriter::PageWriter(DataDirectory directory, const CurrentFeed &current, Choice<DateReader> dates,
                       Choice<PageText> text)
    : m_directory(std::move(directory)), m_current(current), m_dates(dates), m_text(text)
{}

QString PageWriter::pagePath() const
{
    return m_directory.file(u"tmp.htm"_s);
}

void PageWriter::writeChannelPage() const
{
    const CachedFeed &feed = *m_current.document;
    QString page = u"<html>" % lineBreak;
    page += m_text->head % lineBreak;
    page += u"<body><div id=\"frame\">" % lineBreak;
    page += u"<table width=\"95%\" cellspacing=\"10\"><tr><td width=\"144px\" valign=\"top\">" % lineBreak;
    if (FeedImage image; feed.GetImage(image))
        page += imagePieces(image, *m_text);
    page += u"</td>" % lineBreak;
    page += u"<td valign=\"top\"><h1>" % m_text->wide(feed.Title()) % u"</h1>" % lineBreak;
    page += u"<p id=\"content\">" % m_text->wide(feed.Description()) % u"</p>" % lineBreak;
    page += u"<p id=\"link\"><img src=\"slien.gif\" />&nbsp;<a href=\"" % feed.Link() % u"\">Site web</a></p></td>" %
            lineBreak;
    page += u"</tr></table></div></body></html>";
    Files::write(pagePath(), m_text->bytes(page));
}

/// "" for an item that lacks one of both. The date is read from the feed's own text: between the zero characters of a
/// wide one no date is found.
QString PageWriter::authorAndDate(qint16 index, const QString &shownAuthor) const
{
    const QString date = m_current.document->ItemPubDate(index);
    if (shownAuthor.isEmpty() || date.isEmpty())
        return {};
    const QDateTime local = m_dates->NormaliseDate(date);
    return local.isValid() ? QString(u"Par " % shownAuthor % u" le " % DateText::toText(local)) : QString();
}

void PageWriter::writeItemPage(qint16 index) const
{
    const CachedFeed &feed = *m_current.document;
    QString page = u"<html>" % lineBreak;
    page += m_text->head % lineBreak;
    page += u"<body><div id=\"frame\"><h1>" % m_text->wide(feed.ItemTitle(index)) % u"</h1>" % lineBreak;
    page += u"<p id=\"content\">" % m_text->wide(feed.ItemDescription(index)) % u"</p>" % lineBreak;
    if (ItemSource source; feed.GetItemSource(index, source)) {
        page += u"<p id=\"source\">[ <span>Source : </span><a href=\"" % source.Url % u"\">" % source.Name %
                u"</a> ]</p>" % lineBreak;
    }
    if (const QString line = authorAndDate(index, m_text->wide(feed.ItemAuthor(index))); !line.isEmpty())
        page += u"<p id=\"author\">" % line % u"</p>" % lineBreak;
    page += u"<p id=\"link\"><img src=\"slien.gif\" />&nbsp;<a href=\"" % feed.ItemLink(index) %
            u"\">Voir le site</a></p>" % lineBreak;
    page += u"</div></body></html>";
    Files::write(pagePath(), m_text->bytes(page));
}

QString PageWriter::mailText(qint16 index) const
{
    const CachedFeed &feed = *m_current.document;
    QString text = feed.ItemTitle(index) % lineBreak % lineBreak;
    text += m_text->wide(feed.ItemDescription(index)) % lineBreak % lineBreak;
    if (ItemSource source; feed.GetItemSource(index, source))
        text += u"[Source : " % source.Name % u" (" % source.Url % u")]" % lineBreak;
    if (const QString line = authorAndDate(index, feed.ItemAuthor(index)); !line.isEmpty())
        text += line % lineBreak;
    text += u"Pour l'article en entier : " % feed.ItemLink(index) % lineBreak;
    return text;
}

QString PageWriter::FormatSize(qint32 &bytes)
{
    if (bytes < unitStep)
        return QString::number(bytes) % u" o";
    bytes = nextUnit(bytes);
    if (bytes < unitStep)
        return QString::number(bytes) % u" Ko";
    bytes = nextUnit(bytes);
    if (bytes < unitStep)
        return QString::number(bytes) % u" Mo";
    return u"> 1 Go"_s;
}

QString PageWriter::UrlFileName(const QString &url)
{
    return url.mid(url.lastIndexOf(u'/') + 1);
}

// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/HtmlText.h"

#include "platform/Literals.h"
#include "platform/xml/XmlCharacters.h"

#include <QRegularExpression>

#include <libxml/HTMLparser.h>

#include <algorithm>

namespace {

/// The end of the tag or comment that begins with the "<" at `begin`, past its last character; `begin` for a "<" that
/// begins none.
qsizetype endOfTag(QStringView markup, qsizetype begin)
{
    const QStringView rest = markup.sliced(begin);
    if (rest.startsWith(u"<!--"_s)) {
        const qsizetype end = rest.indexOf(u"-->"_s);
        return end < 0 ? markup.size() : begin + end + 3;
    }
    const bool opens = rest.size() > 1 && (rest[1].isLetter() || rest[1] == u'/' || rest[1] == u'!' || rest[1] == u'?');
    if (!opens)
        return begin;
    QChar quote;
    for (qsizetype i = 1; i < rest.size(); ++i) {
        if (!quote.isNull())
            quote = rest[i] == quote ? QChar() : quote;
        else if ((rest[i] == u'"' || rest[i] == u'\'') && rest[i - 1] == u'=')
            quote = rest[i];
        else if (rest[i] == u'>')
            return begin + i + 1;
    }
    return markup.size();
}

/// Blanks of a block's edges part words too.
bool partsWords(QStringView tag)
{
    static constexpr QStringView names[] = {u"br", u"p",  u"div", u"li", u"tr", u"td",
                                            u"th", u"h1", u"h2",  u"h3", u"hr"};
    const QStringView name = tag.sliced(tag.startsWith(u"</"_s) ? 2 : 1);
    return std::any_of(std::begin(names), std::end(names), [name](QStringView known) {
        return name.startsWith(known, Qt::CaseInsensitive) &&
               (name.size() == known.size() || !name[known.size()].isLetterOrNumber());
    });
}

} // namespace

std::pair<QString, qsizetype> HtmlText::reference(QStringView markup, qsizetype place)
{
    constexpr qsizetype longest = 12;
    const qsizetype end = markup.sliced(place, std::min(longest, markup.size() - place)).indexOf(u';');
    if (end < 2)
        return {};
    const QStringView name = markup.sliced(place + 1, end - 1);
    char32_t code = 0;
    if (name.startsWith(u'#')) {
        const bool isHex = name.size() > 1 && (name[1] == u'x' || name[1] == u'X');
        code = isHex ? name.sliced(2).toUInt(nullptr, 16) : name.sliced(1).toUInt();
    } else if (name == u"apos") { // of XML, which HTML 4 doesn't know
        code = u'\'';
    } else if (const htmlEntityDesc *entity =
                   htmlEntityLookup(reinterpret_cast<const xmlChar *>(name.toLatin1().constData()))) {
        code = entity->value;
    }
    const bool isText = (code >= 0x20 || code == '\t' || code == '\n' || code == '\r') && code != 0xFFFE &&
                        code != 0xFFFF && code <= QChar::LastValidCodePoint && !QChar::isSurrogate(code);
    return isText ? std::pair(QString::fromUcs4(&code, 1), end + 1) : std::pair(QString(), qsizetype(0));
}

QString HtmlText::bare(const QString &markup)
{
    QString text;
    for (qsizetype i = 0; i < markup.size();) {
        if (markup[i] == u'<') {
            if (const qsizetype end = endOfTag(markup, i); end > i) {
                if (partsWords(QStringView(markup).sliced(i, end - i)))
                    text += u' ';
                i = end;
                continue;
            }
        } else if (markup[i] == u'&') {
            if (const auto [character, length] = reference(markup, i); length > 0) {
                text += character;
                i += length;
                continue;
            }
        }
        text += markup[i++];
    }
    // Only the blanks that markup doesn't tell apart: a no-break space is one to keep.
    QString result;
    for (const QChar c : text) {
        if (!isXmlBlank(c))
            result += c;
        else if (!result.isEmpty() && !result.endsWith(u' '))
            result += u' ';
    }
    return result.endsWith(u' ') ? result.chopped(1) : result;
}

/// Each attribute with an address, whose value is quoted or ends at a blank or at the tag's end.
QString HtmlText::withAddresses(const QString &markup, const std::function<QString(const QString &)> &whole)
{
    static const QRegularExpression attribute(
        u"\\s(?:href|src|poster)\\s*=\\s*(?:\"([^\"]*)\"|'([^']*)'|([^\\s\"'>]+))"_s,
        QRegularExpression::CaseInsensitiveOption);
    QString result;
    qsizetype done = 0;
    for (qsizetype begin = markup.indexOf(u'<'); begin >= 0; begin = markup.indexOf(u'<', begin)) {
        const qsizetype end = endOfTag(markup, begin);
        if (end == begin) {
            ++begin;
            continue;
        }
        const QString tag = markup.sliced(begin, end - begin);
        for (auto found = attribute.globalMatch(tag.startsWith(u"<!"_s) ? QString() : tag); found.hasNext();) {
            const QRegularExpressionMatch match = found.next();
            const int group = match.lastCapturedIndex();
            const QString written = match.captured(group).trimmed();
            const qsizetype place = begin + match.capturedStart(group);
            result += QStringView(markup).sliced(done, place - done);
            result += written.isEmpty()
                          ? written
                          : escaped(whole(bare(written))).replace(u'"', "&quot;"_L1).replace(u'\'', "&#39;"_L1);
            done = begin + match.capturedEnd(group);
        }
        begin = end;
    }
    return result + QStringView(markup).sliced(done);
}

QString HtmlText::escaped(const QString &text)
{
    QString markup = text;
    return markup.replace(u'&', "&amp;"_L1).replace(u'<', "&lt;"_L1).replace(u'>', "&gt;"_L1);
}

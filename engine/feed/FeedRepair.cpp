// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/FeedRepair.h"

#include "engine/feed/HtmlText.h"
#include "platform/AnsiText.h"
#include "platform/Literals.h"
#include "platform/xml/XmlCharacters.h"

#include <QSet>
#include <QStringDecoder>
#include <QStringList>

#include <algorithm>
#include <array>

namespace {

constexpr qsizetype deepest = 250; // elements; the parser takes 256

/// The encoding that the declaration names, in lower case; "" when it names none.
QByteArray declaredEncoding(const QByteArray &bytes)
{
    constexpr qsizetype room = 200; // bytes, in which a declaration ends
    const QByteArray head = bytes.first(std::min(room, bytes.size()));
    const qsizetype end = head.indexOf("?>");
    const qsizetype name = head.first(std::max<qsizetype>(end, 0)).indexOf("encoding");
    const qsizetype quote = name < 0 ? -1 : head.indexOf(head.indexOf('"', name) < 0 ? '\'' : '"', name);
    const qsizetype close = quote < 0 ? -1 : head.indexOf(head[quote], quote + 1);
    return close < 0 ? QByteArray() : head.mid(quote + 1, close - quote - 1).trimmed().toLower();
}

bool isLatin1(const QByteArray &encoding)
{
    static constexpr std::array<const char *, 6> labels = {"iso-8859-1", "iso8859-1",  "latin1",
                                                           "us-ascii",   "iso_8859-1", "ascii"};
    return std::find(labels.begin(), labels.end(), encoding) != labels.end();
}

/// As browsers decode it: what says Latin-1 is windows-1252, and so is what says or means UTF-8 and isn't.
QString decoded(const QByteArray &bytes)
{
    const QByteArray encoding = declaredEncoding(bytes);
    if (isLatin1(encoding) || encoding == "windows-1252")
        return AnsiText::fromBytes(bytes);
    if (const auto byMark = QStringConverter::encodingForData(bytes, u'<')) {
        QStringDecoder decoder(*byMark);
        return decoder.decode(bytes);
    }
    QStringDecoder decoder(encoding.isEmpty() ? "utf-8" : encoding.constData());
    if (!decoder.isValid())
        decoder = QStringDecoder(QStringConverter::Utf8);
    QString text = decoder.decode(bytes);
    return decoder.hasError() ? AnsiText::fromBytes(bytes) : text;
}

bool beginsName(QChar c)
{
    return c.isLetter() || c == u'_' || c == u':';
}

bool isInName(QChar c)
{
    return beginsName(c) || c.isDigit() || c == u'-' || c == u'.' || c.isMark();
}

/// Elements of HTML that have no end tag.
bool isVoid(const QString &name)
{
    static const QSet<QString> names = {u"br"_s, u"hr"_s, u"img"_s, u"input"_s, u"wbr"_s, u"area"_s, u"col"_s};
    return names.contains(name.toLower());
}

bool isItem(const QString &name)
{
    return name == "item"_L1 || name == "entry"_L1;
}

/// Goes through the text once and writes it down as it should be.
class Mender final
{
public:
    /// What stands in front of the declaration is none of the document.
    explicit Mender(const QString &text) : m_text(text), m_place(std::max<qsizetype>(text.indexOf(u"<?xml"_s), 0)) {}

    /// "" when it can't be mended.
    QString mended()
    {
        while (m_place < m_text.size() && !m_isTooDeep && !(m_hasRoot && m_open.isEmpty()))
            takeNext();
        if (!m_hasRoot || m_isTooDeep)
            return {};
        while (!m_open.isEmpty())
            close();
        return m_out;
    }

private:
    bool isAt(QStringView token) const { return QStringView(m_text).sliced(m_place).startsWith(token); }

    void takeNext()
    {
        if (isAt(u"<!--"))
            m_place = endOf(u"-->");
        else if (isAt(u"<![CDATA["))
            takeCdata();
        else if (isAt(u"<?"))
            m_place = endOf(u"?>");
        else if (isAt(u"<!"))
            takeDocumentType();
        else if (isAt(u"</"))
            takeEndTag();
        else if (isAt(u"<") && m_place + 1 < m_text.size() && beginsName(m_text[m_place + 1]))
            takeStartTag();
        else
            takeText();
    }

    /// Behind the next such token; the end of the text where there is none.
    qsizetype endOf(QStringView token) const
    {
        const qsizetype found = m_text.indexOf(token, m_place);
        return found < 0 ? m_text.size() : found + token.size();
    }

    void takeCdata()
    {
        const qsizetype end = endOf(u"]]>");
        const bool isCut = !QStringView(m_text).first(end).endsWith(u"]]>");
        if (!m_open.isEmpty())
            m_out += QStringView(m_text).sliced(m_place, end - m_place) + (isCut ? u"]]>" : u"");
        m_place = end;
    }

    /// As it stands, its declarations in brackets included.
    void takeDocumentType()
    {
        qsizetype end = endOf(u">");
        if (const qsizetype bracket = QStringView(m_text).first(end).indexOf(u'[', m_place); bracket >= 0) {
            const qsizetype close = m_text.indexOf(u']', bracket);
            end = close < 0 ? m_text.size() : std::max(end, m_text.indexOf(u'>', close) + 1);
        }
        if (!m_hasRoot && isAt(u"<!DOCTYPE"))
            m_out += m_documentType = m_text.sliced(m_place, end - m_place);
        m_place = end;
    }

    QString takeName()
    {
        const qsizetype begin = m_place;
        while (m_place < m_text.size() && isInName(m_text[m_place]))
            ++m_place;
        return m_text.sliced(begin, m_place - begin);
    }

    void takeEndTag()
    {
        m_place += 2;
        const QString name = takeName();
        m_place = endOf(u">");
        if (!m_open.contains(name))
            return; // of nothing that is open
        closeThrough(name);
    }

    void closeThrough(const QString &name)
    {
        while (m_open.last() != name)
            close();
        close();
    }

    void close() { m_out += u"</" + m_open.takeLast() + u'>'; }

    void skipBlanks()
    {
        while (m_place < m_text.size() && isXmlBlank(m_text[m_place]))
            ++m_place;
    }

    void takeStartTag()
    {
        ++m_place;
        const QString name = takeName();
        QString tag = u'<' + name;
        QSet<QString> known;
        bool isEmpty = false;
        for (skipBlanks(); m_place < m_text.size() && m_text[m_place] != u'>'; skipBlanks()) {
            if (m_text[m_place] == u'<')
                break; // the tag was never ended
            isEmpty = m_text[m_place] == u'/';
            if (!beginsName(m_text[m_place])) {
                ++m_place;
                continue;
            }
            const QString attribute = takeName();
            const QString value = takeValue(attribute);
            if (!known.contains(attribute))
                tag += u' ' + attribute + u"=\"" +
                       withSoundReferences(value).replace(u'<', "&lt;"_L1).replace(u'"', "&quot;"_L1) + u'"';
            known.insert(attribute);
        }
        if (m_place >= m_text.size())
            return; // cut off in the middle of the tag
        m_place += m_text[m_place] == u'>' ? 1 : 0;
        m_hasRoot = true;
        isEmpty = isEmpty || isVoid(name);
        if (isItem(name) && m_open.contains(name)) // one that was never ended: none stands in another
            closeThrough(name);
        m_out += tag + (isEmpty ? u"/>" : u">");
        if (!isEmpty)
            m_open += name;
        m_isTooDeep = m_open.size() > deepest;
    }

    /// The value behind the attribute's name, whose own stands for a missing one.
    QString takeValue(const QString &attribute)
    {
        skipBlanks();
        if (!isAt(u"="))
            return attribute;
        ++m_place;
        skipBlanks();
        const QChar quote = m_place < m_text.size() ? m_text[m_place] : QChar();
        const qsizetype begin = m_place;
        if (quote == u'"' || quote == u'\'') {
            const qsizetype end = m_text.indexOf(quote, begin + 1);
            m_place = end < 0 ? m_text.size() : end + 1;
            return m_text.sliced(begin + 1, m_place - begin - (end < 0 ? 1 : 2));
        }
        while (m_place < m_text.size() && !isXmlBlank(m_text[m_place]) && m_text[m_place] != u'>')
            ++m_place;
        return m_text.sliced(begin, m_place - begin);
    }

    void takeText()
    {
        qsizetype end = m_text.indexOf(u'<', m_place + 1);
        end = end < 0 ? m_text.size() : end;
        QString text = m_text.sliced(m_place, end - m_place);
        m_place = end;
        if (!m_open.isEmpty()) // in front of the document and behind it there is none
            m_out += withSoundReferences(text).replace(u'<', "&lt;"_L1).replace(u"]]>"_s, "]]&gt;"_L1);
    }

    /// References that the document may use stay, those of HTML are resolved, and every other "&" is only that.
    QString withSoundReferences(const QString &text) const
    {
        QString sound;
        qsizetype done = 0;
        for (qsizetype at = text.indexOf(u'&'); at >= 0; at = text.indexOf(u'&', at + 1)) {
            sound += QStringView(text).sliced(done, at - done);
            const auto [character, length] = HtmlText::reference(text, at);
            if (length > 0)
                sound += HtmlText::escaped(character);
            else
                sound += isDeclared(QStringView(text).sliced(at + 1)) ? "&"_L1 : "&amp;"_L1;
            done = at + std::max<qsizetype>(length, 1);
        }
        return sound + QStringView(text).sliced(done);
    }

    /// Whether an entity whose name ends at the next ";" is declared in the document.
    bool isDeclared(QStringView behind) const
    {
        constexpr qsizetype longest = 64;
        const qsizetype end =
            m_documentType.isEmpty() ? -1 : behind.first(std::min(longest, behind.size())).indexOf(u';');
        return end > 0 && m_documentType.contains(QString(u"<!ENTITY " + behind.first(end).toString() + u' '));
    }

    const QString &m_text;
    qsizetype m_place;
    QString m_out;
    QString m_documentType;
    QStringList m_open;
    bool m_hasRoot = false;
    bool m_isTooDeep = false;
};

} // namespace

QByteArray FeedRepair::mended(const QByteArray &bytes)
{
    const QString text = withoutWhatXmlCannotHold(decoded(bytes));
    return Mender(text).mended().toUtf8();
}

bool FeedRepair::isMislabelled(const QByteArray &bytes)
{
    return isLatin1(declaredEncoding(bytes)) && std::any_of(bytes.begin(), bytes.end(), [](char byte) {
               const auto code = static_cast<unsigned char>(byte);
               return code >= 0x80 && code < 0xA0;
           });
}

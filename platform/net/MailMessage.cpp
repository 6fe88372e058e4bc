// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/net/MailMessage.h"

#include "platform/Literals.h"

#include <QStringList>
#include <QUrl>

#include <algorithm>

namespace {

constexpr qsizetype LineLimit = 76;
constexpr qsizetype EncodedWordBytes = 39; ///< of UTF-8: 64 characters with their Base64 and its frame
constexpr qsizetype AddressLimit = 254;    ///< RFC 5321 with its brackets: 256

bool isControl(QChar character)
{
    const char16_t code = character.unicode();
    return code < 0x20 || (code >= 0x7f && code < 0xa0) || code == 0x2028 || code == 0x2029;
}

/// A text for a header: one line, no control characters.
QString inOneLine(QString text)
{
    std::ranges::replace_if(text, isControl, QChar(u' '));
    return text.trimmed();
}

bool isPlain(const QString &text)
{
    return std::ranges::all_of(text, [](QChar character) { return character.unicode() < 0x7f; }) &&
           !text.contains(u"=?");
}

/// The text as encoded words (RFC 2047), one a line; none of them cuts a character in two.
QByteArray encodedWords(const QString &text)
{
    QList<QByteArray> words;
    QByteArray word;
    const auto endWord = [&] {
        words.append("=?UTF-8?B?" + word.toBase64() + "?=");
        word.clear();
    };
    const QList<uint> characters = text.toUcs4();
    for (const uint character : characters) {
        const QByteArray bytes = QString::fromUcs4(reinterpret_cast<const char32_t *>(&character), 1).toUtf8();
        if (word.size() + bytes.size() > EncodedWordBytes)
            endWord();
        word += bytes;
    }
    endWord();
    return words.join("\r\n ");
}

QByteArray subjectHeader(const QString &subject)
{
    const QString text = inOneLine(subject);
    const QByteArray name = "Subject: ";
    if (isPlain(text) && name.size() + text.size() <= LineLimit)
        return name + text.toLatin1();
    return name + encodedWords(text);
}

QByteArray addressHeader(const QByteArray &name, const QString &displayName, const QString &address)
{
    const QByteArray envelope = MailMessage::envelopeAddress(address);
    QString text = inOneLine(displayName);
    if (text.isEmpty())
        return name + envelope;
    const QByteArray target = "\r\n <" + envelope + ">";
    const bool plain = isPlain(text);
    const QString quoted = u'"' + text.replace(u'\\', u"\\\\"_s).replace(u'"', u"\\\""_s) + u'"';
    if (plain && name.size() + quoted.size() <= LineLimit)
        return name + quoted.toLatin1() + target;
    return name + encodedWords(inOneLine(displayName)) + target;
}

/// One line, without its end, in quoted-printable (RFC 2045, 6.7).
QByteArray quotedPrintable(const QByteArray &line)
{
    QByteArray coded;
    qsizetype column = 0;
    for (qsizetype i = 0; i < line.size(); ++i) {
        const char byte = line[i];
        const bool isLast = i == line.size() - 1;
        const bool isBlank = byte == ' ' || byte == '\t';
        const bool literal = (byte > ' ' && byte < 0x7f && byte != '=') || (isBlank && !isLast);
        QByteArray piece(1, byte);
        if (!literal)
            piece = '=' + piece.toHex().toUpper();
        // The last piece of a line may fill it; any other leaves room for the soft line break.
        if (column + piece.size() > LineLimit - (isLast ? 0 : 1)) {
            coded += "=\r\n";
            column = 0;
        }
        coded += piece;
        column += piece.size();
    }
    return coded;
}

QByteArray body(QString text)
{
    text.remove(QChar(u'\0'));
    text.replace(u"\r\n"_s, u"\n"_s).replace(u'\r', u'\n');
    QByteArray lines;
    const QList<QByteArray> list = text.toUtf8().split('\n');
    for (const QByteArray &line : list)
        lines += quotedPrintable(line) + "\r\n";
    // What ends in a line break has an empty line behind it in the list.
    if (list.last().isEmpty() && list.size() > 1)
        lines.chop(2);
    return lines;
}

} // namespace

QByteArray MailMessage::envelopeAddress(const QString &address)
{
    QString text = address;
    text.removeIf(isControl);
    text = text.trimmed();
    const qsizetype at = text.lastIndexOf(u'@');
    if (at < 1)
        return {};
    const QString local = text.left(at);
    const auto allowed = [](QChar character) {
        const char16_t code = character.unicode();
        return code > ' ' && code < 0x7f && !QStringView(u"\"(),:;<>@[\\]").contains(character);
    };
    if (!std::ranges::all_of(local, allowed))
        return {};
    const QString host = text.mid(at + 1);
    // An address of the network in brackets stays as it is: the library's host names know no such form.
    const bool isLiteral = host.startsWith(u'[') && host.endsWith(u']') && host.size() > 2 &&
                           std::all_of(host.begin() + 1, host.end() - 1, [](QChar character) {
                               return character.unicode() < 0x7f &&
                                      (character.isLetterOrNumber() || character == u'.' || character == u':');
                           });
    const QByteArray domain = isLiteral ? host.toLatin1() : QUrl::toAce(host);
    const QByteArray result = local.toLatin1() + '@' + domain;
    return domain.isEmpty() || result.size() > AddressLimit ? QByteArray() : result;
}

QByteArray MailMessage::compose(const Fields &fields, const QDateTime &date, const QByteArray &messageId)
{
    const QList<QByteArray> headers{
        "Date: " + date.toOffsetFromUtc(date.offsetFromUtc()).toString(Qt::RFC2822Date).toLatin1(),
        addressHeader("From: ", fields.fromName, fields.from),
        addressHeader("To: ", fields.recipientName, fields.recipient),
        subjectHeader(fields.subject),
        "Message-ID: <" + messageId + ">",
        "MIME-Version: 1.0",
        "Content-Type: text/plain; charset=UTF-8",
        "Content-Transfer-Encoding: quoted-printable",
    };
    return headers.join("\r\n") + "\r\n\r\n" + body(fields.text);
}

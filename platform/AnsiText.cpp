// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/AnsiText.h"

#include <array>

namespace {

/// The characters of bytes 80 to 9F hex (the Windows-1252 code chart); the rest of the page is Latin-1.
constexpr std::array<char16_t, 32> upperControls = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr int noByte = -1;

int byteOf(char16_t c)
{
    if (c < 0x80 || (c >= 0xA0 && c <= 0xFF))
        return c;
    for (std::size_t i = 0; i < upperControls.size(); ++i)
        if (upperControls[i] == c)
            return static_cast<int>(0x80 + i);
    return noByte;
}

char16_t characterOf(unsigned char byte)
{
    return byte >= 0x80 && byte < 0xA0 ? upperControls[byte - 0x80U] : static_cast<char16_t>(byte);
}

} // namespace

QByteArray AnsiText::toBytes(const QString &text)
{
    QByteArray bytes(text.size(), Qt::Uninitialized);
    for (qsizetype i = 0; i < text.size(); ++i) {
        const int byte = byteOf(text[i].unicode());
        bytes[i] = byte == noByte ? '?' : static_cast<char>(byte);
    }
    return bytes;
}

QString AnsiText::fromBytes(const QByteArray &bytes)
{
    QString text(bytes.size(), Qt::Uninitialized);
    for (qsizetype i = 0; i < bytes.size(); ++i)
        text[i] = QChar(characterOf(static_cast<unsigned char>(bytes[i])));
    return text;
}

QString AnsiText::widenBytes(const QString &text)
{
    QString wide(text.size() * 2, Qt::Uninitialized);
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t unit = text[i].unicode();
        wide[2 * i] = QChar(characterOf(static_cast<unsigned char>(unit & 0xFF)));
        wide[2 * i + 1] = QChar(characterOf(static_cast<unsigned char>(unit >> 8)));
    }
    return wide;
}

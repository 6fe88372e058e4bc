// SPDX-License-Identifier: GPL-3.0-or-later

#include "support/clsDES.h"

#include "platform/AnsiText.h"
#include "platform/Files.h"
#include "platform/Literals.h"
#include "platform/Numbers.h"
#include "platform/RunTimeError.h"
#include "support/DesTables.h"

#include <QRandomGenerator>
#include <QtEndian>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

constexpr qsizetype BlockSize = 8;
constexpr qsizetype HeadSize = 12;
constexpr qsizetype SizeOffset = 8;
constexpr qsizetype LineLength = 76;

template <std::size_t Out, std::size_t In>
std::array<quint8, Out> permuted(const std::array<quint8, In> &bits, const std::array<quint8, Out> &table)
{
    std::array<quint8, Out> result;
    for (std::size_t i = 0; i < Out; ++i)
        result[i] = bits[table[i]];
    return result;
}

std::array<quint8, 64> bitsOf(const clsDES::Block &block)
{
    std::array<quint8, 64> bits;
    for (std::size_t i = 0; i < 64; ++i)
        bits[i] = (block[i / 8] >> (7 - i % 8)) & 1;
    return bits;
}

clsDES::Block bytesOf(const std::array<quint8, 64> &bits)
{
    clsDES::Block block{};
    for (std::size_t i = 0; i < 64; ++i)
        block[i / 8] = static_cast<quint8>(block[i / 8] << 1 | bits[i]);
    return block;
}

clsDES::Block blockAt(const QByteArray &bytes, qsizetype offset)
{
    clsDES::Block block;
    std::memcpy(block.data(), bytes.constData() + offset, BlockSize);
    return block;
}

void putBlock(QByteArray &bytes, qsizetype offset, const clsDES::Block &block)
{
    std::memcpy(bytes.data() + offset, block.data(), BlockSize);
}

void exclusiveOr(clsDES::Block &block, const clsDES::Block &other)
{
    for (std::size_t i = 0; i < block.size(); ++i)
        block[i] ^= other[i];
}

/// Tells the percentage of a run of blocks whenever it has grown by one.
class ProgressReport
{
public:
    ProgressReport(const std::function<void(int)> &listener, qsizetype length) : m_listener(listener), m_length(length)
    {}

    void reached(qsizetype offset)
    {
        if (offset < m_next)
            return;
        m_percent = static_cast<int>(std::floor(static_cast<double>(offset) / m_length * 100));
        m_next = static_cast<qsizetype>(std::nearbyint((m_percent + 1) / 100.0 * m_length + 1));
        report();
    }

    void finished()
    {
        if (m_percent == 100)
            return;
        m_percent = 100;
        report();
    }

private:
    void report() const
    {
        if (m_listener)
            m_listener(m_percent);
    }

    const std::function<void(int)> &m_listener;
    qsizetype m_length;
    qsizetype m_next = 0;
    int m_percent = 0;
};

} // namespace

clsDES::clsDES() : m_random([] { return QRandomGenerator::system()->generateDouble(); }) {}

void clsDES::setKey(const QString &newValue)
{
    if (newValue == m_key)
        return;
    m_key = newValue;
    const QByteArray bytes = AnsiText::toBytes(newValue).left(BlockSize);
    Block block{};
    std::copy(bytes.begin(), bytes.end(), block.begin());

    // The two halves of 28 bits lie one behind the other.
    std::array<quint8, 56> halves = permuted(bitsOf(block), DesTables::PermutedChoice1);
    for (std::size_t round = 0; round < m_subKeys.size(); ++round) {
        const quint8 shift = DesTables::Shifts[round];
        std::rotate(halves.begin(), halves.begin() + shift, halves.begin() + 28);
        std::rotate(halves.begin() + 28, halves.begin() + 28 + shift, halves.end());
        m_subKeys[round] = permuted(halves, DesTables::PermutedChoice2);
    }
}

clsDES::Block clsDES::encryptBlock(const Block &block) const
{
    return runBlock(block, false);
}

clsDES::Block clsDES::decryptBlock(const Block &block) const
{
    return runBlock(block, true);
}

clsDES::Block clsDES::runBlock(const Block &block, bool decipher) const
{
    const std::array<quint8, 64> start = permuted(bitsOf(block), DesTables::InitialPermutation);
    std::array<quint8, 32> left;
    std::array<quint8, 32> right;
    std::copy(start.begin(), start.begin() + 32, left.begin());
    std::copy(start.begin() + 32, start.end(), right.begin());

    for (std::size_t round = 0; round < m_subKeys.size(); ++round) {
        const SubKey &subKey = m_subKeys[decipher ? m_subKeys.size() - 1 - round : round];
        const std::array<quint8, 48> expanded = permuted(right, DesTables::Expansion);
        std::array<quint8, 32> substituted;
        for (std::size_t box = 0; box < 8; ++box) {
            std::size_t input = 0;
            for (std::size_t bit = 6 * box; bit < 6 * box + 6; ++bit)
                input = input << 1 | (expanded[bit] ^ subKey[bit]);
            std::ranges::copy(DesTables::Boxes[box][input], substituted.begin() + 4 * box);
        }
        std::array<quint8, 32> next = permuted(substituted, DesTables::RoundPermutation);
        for (std::size_t i = 0; i < next.size(); ++i)
            next[i] ^= left[i];
        left = right;
        right = next;
    }

    std::array<quint8, 64> end;
    std::copy(right.begin(), right.end(), end.begin());
    std::copy(left.begin(), left.end(), end.begin() + 32);
    return bytesOf(permuted(end, DesTables::FinalPermutation));
}

void clsDES::EncryptByte(QByteArray &byteArray, const QString &key)
{
    if (!key.isEmpty())
        setKey(key);
    const qsizetype size = byteArray.size();
    const qsizetype cipherSize = (size + HeadSize + BlockSize - 1) / BlockSize * BlockSize;
    QByteArray bytes(cipherSize, '\0');
    const auto drawNumber = [this] { return Numbers::roundToInt32(m_random() * 2147483647.0); };
    qToLittleEndian(drawNumber(), bytes.data());
    qToLittleEndian(drawNumber(), bytes.data() + 4);
    qToLittleEndian(Numbers::roundToInt32(static_cast<double>(size)), bytes.data() + SizeOffset);
    std::copy(byteArray.cbegin(), byteArray.cend(), bytes.begin() + HeadSize);

    ProgressReport progress(m_progress, cipherSize);
    Block chain{};
    for (qsizetype offset = 0; offset < cipherSize; offset += BlockSize) {
        exclusiveOr(chain, blockAt(bytes, offset));
        chain = encryptBlock(chain);
        putBlock(bytes, offset, chain);
        progress.reached(offset);
    }
    byteArray = bytes;
    progress.finished();
}

void clsDES::DecryptByte(QByteArray &byteArray, const QString &key)
{
    if (!key.isEmpty())
        setKey(key);
    const qsizetype length = byteArray.size();
    ProgressReport progress(m_progress, length);
    Block chain{};
    for (qsizetype offset = 0; offset + BlockSize <= length; offset += BlockSize) {
        const Block cipher = blockAt(byteArray, offset);
        Block plain = decryptBlock(cipher);
        exclusiveOr(plain, chain);
        chain = cipher;
        putBlock(byteArray, offset, plain);
        progress.reached(offset);
    }

    // Every return from here on is silent on purpose, that of an empty plain text too: nobody learns of a wrong key.
    if (length % BlockSize != 0 || length < HeadSize)
        return;
    const qint64 size = qFromLittleEndian<qint32>(byteArray.constData() + SizeOffset);
    if (length - size < HeadSize || length - size > HeadSize + BlockSize - 1 || size <= 0)
        return;
    byteArray = byteArray.mid(HeadSize, size);
    progress.finished();
}

QString clsDES::EncryptString(const QString &text, const QString &key, bool outputIn64)
{
    QByteArray bytes = AnsiText::toBytes(text);
    EncryptByte(bytes, key);
    const QString cipher = AnsiText::fromBytes(bytes);
    return outputIn64 ? Encode64(cipher) : cipher;
}

QString clsDES::DecryptString(QString &text, const QString &key, bool isTextIn64)
{
    if (isTextIn64)
        text = Decode64(text);
    QByteArray bytes = AnsiText::toBytes(text);
    DecryptByte(bytes, key);
    return AnsiText::fromBytes(bytes);
}

bool clsDES::EncryptFile(const QString &inFile, const QString &outFile, bool overwrite, const QString &key,
                         bool outputIn64)
{
    return convertFile(inFile, outFile, overwrite, [&](QByteArray &bytes) {
        EncryptByte(bytes, key);
        if (outputIn64)
            bytes = AnsiText::toBytes(EncodeArray64(bytes));
    });
}

bool clsDES::DecryptFile(const QString &inFile, const QString &outFile, bool overwrite, const QString &key,
                         bool isFileIn64)
{
    return convertFile(inFile, outFile, overwrite, [&](QByteArray &bytes) {
        if (isFileIn64)
            bytes = DecodeArray64(AnsiText::fromBytes(bytes));
        DecryptByte(bytes, key);
    });
}

bool clsDES::convertFile(const QString &inFile, const QString &outFile, bool overwrite,
                         const std::function<void(QByteArray &)> &convert)
{
    if (!overwrite && Files::exists(outFile))
        return false;
    Files::Content content = Files::read(inFile);
    if (content.result != Files::ReadResult::Read)
        return false;
    try {
        convert(content.bytes);
        Files::write(outFile, content.bytes);
    } catch (const RunTimeError &) {
        return false;
    }
    return true;
}

QString clsDES::Encode64(const QString &input)
{
    return EncodeArray64(AnsiText::toBytes(input));
}

QString clsDES::Decode64(const QString &input)
{
    return AnsiText::fromBytes(DecodeArray64(input));
}

QString clsDES::EncodeArray64(const QByteArray &input)
{
    const QByteArray coded = input.toBase64();
    if (coded.size() <= LineLength)
        return QString::fromLatin1(coded);
    QString lines;
    lines.reserve(coded.size() + coded.size() / LineLength * 2);
    for (qsizetype start = 0; start < coded.size(); start += LineLength) {
        const QByteArray line = coded.mid(start, LineLength);
        lines += QString::fromLatin1(line);
        if (line.size() == LineLength)
            lines += u"\r\n";
    }
    return lines;
}

QByteArray clsDES::DecodeArray64(const QString &input)
{
    if (m_reverse64['/'] != 63) {
        constexpr char Alphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        for (quint8 value = 0; value < 64; ++value)
            m_reverse64[static_cast<quint8>(Alphabet[value])] = value;
    }
    QString text = input;
    text.remove(u"\r\n"_s).remove(u'=');

    QByteArray bytes;
    bytes.reserve(text.size() * 3 / 4);
    quint32 group = 0;
    int bits = 0;
    for (const QChar character : std::as_const(text)) {
        const char16_t code = character.unicode();
        group = group << 6 | (code < m_reverse64.size() ? m_reverse64[code] : 0);
        bits += 6;
        if (bits >= 8) {
            bits -= 8;
            bytes.append(static_cast<char>(group >> bits & 0xff));
        }
    }
    return bytes;
}

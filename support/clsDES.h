// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QString>

#include <array>
#include <functional>

/// The DES cipher (FIPS 46) in CBC mode over bytes, texts and files, and Base64 (RFC 2045).
///
/// The cipher text of n bytes is n + 12 bytes, rounded up to a multiple of 8: eight random bytes, which stand in for an
/// initialisation vector, n (32 bits, low byte first), the bytes, zeros. A text is its bytes in the ANSI code page, and
/// bytes become a text the same way.
///
/// A `Key` argument of "" stands for the key given last. A key is the first 8 characters of its text, a shorter one
/// being filled up with zeros; the parity bits have no meaning.
class clsDES
{
public:
    using Block = std::array<quint8, 8>;

    clsDES();

    /// Sets the current key. An equal text costs no new key schedule.
    void setKey(const QString &newValue);

    /// Replaces the bytes by their cipher text.
    void EncryptByte(QByteArray &byteArray, const QString &key = QString());

    /// Replaces the cipher text by its bytes. A wrong key or a broken cipher text is never reported: the array is then
    /// left deciphered as it stands, with its head of 12 bytes, so that a catalogue or settings with a
    /// password of another key still open. A cipher text of no bytes at
    /// all is left so too.
    void DecryptByte(QByteArray &byteArray, const QString &key = QString());

    /// The cipher text of `text`, as a text: one character a byte, or in Base64.
    QString EncryptString(const QString &text, const QString &key = QString(), bool outputIn64 = false);

    /// The text behind a cipher text. With `isTextIn64`, `text` is overwritten by what its Base64 stands for.
    QString DecryptString(QString &text, const QString &key = QString(), bool isTextIn64 = false);

    /// Enciphers a file into another, which is replaced in one step. False, without a message, when `inFile` is absent,
    /// when `outFile` exists and may not be overwritten, or on any error.
    bool EncryptFile(const QString &inFile, const QString &outFile, bool overwrite, const QString &key = QString(),
                     bool outputIn64 = false);

    /// Deciphers a file into another; otherwise as EncryptFile(). A wrong key is no error here either.
    bool DecryptFile(const QString &inFile, const QString &outFile, bool overwrite, const QString &key = QString(),
                     bool isFileIn64 = false);

    /// Base64 of the text's bytes, in lines as EncodeArray64() makes them.
    QString Encode64(const QString &input);

    /// The text behind a Base64 text.
    QString Decode64(const QString &input);

    /// Base64. A result of more than 76 characters has CR LF after every 76 of them, also at its very end.
    QString EncodeArray64(const QByteArray &input);

    /// The bytes behind a Base64 text. CR LF pairs and "=" are left out; any other character outside the alphabet
    /// counts as "A", with no error.
    QByteArray DecodeArray64(const QString &input);

    /// Called within EncryptByte() and DecryptByte() with the percentage done, 0 to 100.
    void setProgress(std::function<void(int percent)> progress) { m_progress = std::move(progress); }

    /// Replaces the source of the random bytes: numbers from 0 up to, and less than, 1.
    void setRandom(std::function<double()> random) { m_random = std::move(random); }

    /// One block through the cipher as FIPS 46 defines it, under the current key.
    Block encryptBlock(const Block &block) const;
    Block decryptBlock(const Block &block) const;

private:
    using SubKey = std::array<quint8, 48>;

    Block runBlock(const Block &block, bool decipher) const;
    bool convertFile(const QString &inFile, const QString &outFile, bool overwrite,
                     const std::function<void(QByteArray &bytes)> &convert);

    QString m_key;
    std::array<SubKey, 16> m_subKeys{};
    std::array<quint8, 256> m_reverse64{};
    std::function<void(int)> m_progress;
    std::function<double()> m_random;
};

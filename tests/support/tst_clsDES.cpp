// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Literals.h"
#include "support/clsDES.h"

#include "platform/AnsiText.h"
#include "platform/Files.h"
#include "tests/fixtures/Steps.h"

#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

#include <tuple>

namespace {

clsDES::Block block(const QByteArray &hex)
{
    const QByteArray bytes = QByteArray::fromHex(hex);
    clsDES::Block result{};
    std::copy(bytes.begin(), bytes.end(), result.begin());
    return result;
}

QByteArray hexOf(const clsDES::Block &bytes)
{
    return QByteArray(reinterpret_cast<const char *>(bytes.data()), bytes.size()).toHex().toUpper();
}

} // namespace

class tst_clsDES : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void blocksAndBase64AgreeWithThePublishedDefinitions()
    {
        const auto take = [](const QString &step, const QString &) {
            const QStringList words = step.split(u' ');
            clsDES des;
            if (words[0] == u"decode")
                return QString::fromLatin1(des.DecodeArray64(QUrl::fromPercentEncoding(words[1].toUtf8())).toHex());
            des.setKey(AnsiText::fromBytes(QByteArray::fromHex(words[1].toLatin1())));
            const clsDES::Block cipher = des.encryptBlock(block(words[2].toLatin1()));
            return QString::fromLatin1(hexOf(cipher) + ' ' + hexOf(des.decryptBlock(cipher)));
        };
        QCOMPARE((Steps{{}, take}.differenceFrom(u"des.steps"_s)), QString());
    }

    /// What OpenSSL makes of eight bytes, the size, low byte first, the text and zeros, and how far it says it is.
    void cipherTextIsHeadSizeAndDataChainedFromZero()
    {
        const QList<std::tuple<QString, QByteArray, QString>> rows = {
            {u"secret"_s, "fd9108d8da54d5a3eeb0c863c20286d69308f01e6dfde9f9", u"0 33 66 100"_s},
            {u""_s, "fd9108d8da54d5a322cad16e6897f848", u"0 50 100"_s},
            {u"abcd"_s, "fd9108d8da54d5a3cbcba1f476552476", u"0 50 100"_s},
            {u"mot de passé €"_s, "fd9108d8da54d5a3b8b0864a2f1d3dd9d48ec64afa9bc34f1584418204c0e245",
             u"0 25 50 75 100"_s},
            {AnsiText::fromBytes(QByteArray::fromHex("00ff8081a0090d0a")),
             "fd9108d8da54d5a3ecd76e7a4516add3d37ee10b593176a4", u"0 33 66 100"_s},
        };
        for (const auto &[text, cipher, percents] : rows) {
            clsDES des;
            int draws = 0;
            QString told;
            des.setProgress([&told](int percent) { told += QString::number(percent) + u' '; });
            des.setRandom([&draws] { return ++draws == 1 ? 0.5 : 0.0; }); // halves go to the even neighbour
            QByteArray bytes = AnsiText::toBytes(text);
            des.EncryptByte(bytes, u"12345678"_s);
            QCOMPARE(bytes.toHex(), cipher);
            QCOMPARE(told.trimmed(), percents);
            told.clear();
            des.DecryptByte(bytes, u"12345678"_s);
            QCOMPARE(told.trimmed(), text.isEmpty() ? percents.chopped(4) : percents);
            // Without a text the head is left too.
            QCOMPARE(bytes,
                     text.isEmpty() ? QByteArray("\0\0\0\x40", 4) + QByteArray(12, '\0') : AnsiText::toBytes(text));
        }
        QStringList every, told;
        clsDES des;
        des.setProgress([&told](int percent) { told += QString::number(percent); });
        for (int percent = 0; percent <= 100; ++percent)
            every += QString::number(percent);
        QByteArray bytes(8 * 250, 'x');
        des.EncryptByte(bytes, u"k"_s);
        QCOMPARE(told, every);
    }

    void textsAndFilesGoThereAndBack()
    {
        const QTemporaryDir directory;
        const QString plain = directory.filePath(u"plain"_s);
        const QString cipher = directory.filePath(u"cipher"_s);
        const QString back = directory.filePath(u"back"_s);
        const QByteArray content(200, 'z');
        Files::write(plain, content);
        clsDES des, other;
        for (const bool in64 : {false, true}) {
            const QString text = u"mot de passé €"_s;
            QString coded =
                in64 ? des.EncryptString(text, u"%%K9:Tm417"_s, true) : des.EncryptString(text, u"%%K9:Tm417"_s);
            QVERIFY(coded != des.EncryptString(text, {}, in64)); // no two runs are alike
            QCOMPARE(coded.size(), in64 ? 44 : 32);
            const QString raw = in64 ? des.Decode64(coded) : coded;
            QCOMPARE(other.DecryptString(coded, u"%%K9:Tm4"_s, in64), text); // eight characters count
            QCOMPARE(coded, raw);                                            // the text in Base64 is overwritten
            QCOMPARE(other.DecryptString(coded), text);                      // with the key given last
            QVERIFY(in64 ? des.EncryptFile(plain, cipher, true, u"k"_s, true)
                         : des.EncryptFile(plain, cipher, false, u"k"_s));
            QCOMPARE(Files::read(cipher).bytes.size(), in64 ? 294 : 216);
            QVERIFY(!des.DecryptFile(cipher, cipher, false));
            QVERIFY(in64 ? des.DecryptFile(cipher, back, true, {}, true) : des.DecryptFile(cipher, back, false));
            QCOMPARE(Files::read(back).bytes, content);
        }
        QVERIFY(!des.EncryptFile(back, plain, false, u"k"_s) && !des.EncryptFile(u"/none"_s, back, true, u"k"_s));
        QVERIFY(!des.EncryptFile(plain, directory.filePath(u"none/file"_s), true, u"k"_s));
        QCOMPARE(Files::read(plain).bytes, content);
        // A short key is filled with zeros.
        des.setKey(u"abc"_s);
        other.setKey(u"abc"_s + QString(5, QChar(0)));
        QCOMPARE(des.encryptBlock({}), other.encryptBlock({}));
    }

    void wrongKeyOrBrokenCipherTextIsSilent()
    {
        clsDES des;
        QByteArray bytes = "some text";
        des.EncryptByte(bytes, u"right"_s);
        const QByteArray cipher = bytes;
        des.DecryptByte(bytes, u"wrong"_s);
        QVERIFY(bytes.size() == cipher.size() && bytes != cipher);
        for (const int length : {0, 8, 13}) {
            QByteArray cut = cipher.left(length);
            des.DecryptByte(cut, u"right"_s);
            QCOMPARE(cut.size(), length);
        }
        // Sizes, and whether the array's length allows for them. What is changed in a block is changed alike in the
        // next one's text.
        for (const auto &[size, isPossible] :
             {std::pair(-3, false), {-1, false}, {0, false}, {1, true}, {4, true}, {5, false}}) {
            QByteArray forged = "text";
            des.EncryptByte(forged, u"right"_s);
            for (int i = 0; i < 4; ++i)
                forged[i] = static_cast<char>(forged[i] ^ (i == 0 ? 4 : 0) ^ (size >> 8 * i));
            des.DecryptByte(forged, u"right"_s);
            QCOMPARE(forged.size(), isPossible ? size : 16);
            QVERIFY(isPossible || forged.endsWith("text"));
        }
    }

    void base64LinesBreakAfter76Characters()
    {
        clsDES des;
        const QString full = QString(76, u'+').replace(u"++++"_s, u"+/v7"_s);
        const QList<QPair<int, QString>> rows = {
            {57, full}, {58, full + u"\r\n+w=="_s}, {114, full + u"\r\n"_s + full + u"\r\n"_s}};
        for (const auto &[size, coded] : rows) {
            const QByteArray input(size, '\xfb');
            QCOMPARE(des.EncodeArray64(input), coded);
            QCOMPARE(des.DecodeArray64(coded), input);
        }
        QCOMPARE(des.Encode64(u"é€"_s), u"6YA="_s);
    }
};

QTEST_GUILESS_MAIN(tst_clsDES)
#include "tst_clsDES.moc"

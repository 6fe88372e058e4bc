// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Literals.h"
#include "support/clsDES.h"

#include "platform/AnsiText.h"
#include "platform/Files.h"

#include <QTemporaryDir>
#include <QTest>

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

QString keyOf(const QByteArray &hex)
{
    return AnsiText::fromBytes(QByteArray::fromHex(hex));
}

} // namespace

class tst_clsDES : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void oneBlockAgreesWithThePublishedVectors_data()
    {
        QTest::addColumn<QByteArray>("key");
        QTest::addColumn<QByteArray>("plain");
        QTest::addColumn<QByteArray>("cipher");
        // The substitution table test of NBS Special Publication 500-20, which reaches every entry of every box.
        const QList<QByteArrayList> vectors{
            {"7CA110454A1A6E57", "01A1D6D039776742", "690F5B0D9A26939B"},
            {"0131D9619DC1376E", "5CD54CA83DEF57DA", "7A389D10354BD271"},
            {"07A1133E4A0B2686", "0248D43806F67172", "868EBB51CAB4599A"},
            {"3849674C2602319E", "51454B582DDF440A", "7178876E01F19B2A"},
            {"04B915BA43FEB5B6", "42FD443059577FA2", "AF37FB421F8C4095"},
            {"0113B970FD34F2CE", "059B5E0851CF143A", "86A560F10EC6D85B"},
            {"0170F175468FB5E6", "0756D8E0774761D2", "0CD3DA020021DC09"},
            {"43297FAD38E373FE", "762514B829BF486A", "EA676B2CB7DB2B7A"},
            {"07A7137045DA2A16", "3BDD119049372802", "DFD64A815CAF1A0F"},
            {"04689104C2FD3B2F", "26955F6835AF609A", "5C513C9C4886C088"},
            {"37D06BB516CB7546", "164D5E404F275232", "0A2AEEAE3FF4AB77"},
            {"1F08260D1AC2465E", "6B056E18759F5CCA", "EF1BF03E5DFA575A"},
            {"584023641ABA6176", "004BD6EF09176062", "88BF0DB6D70DEE56"},
            {"025816164629B007", "480D39006EE762F2", "A1F9915541020B56"},
            {"49793EBC79B3258F", "437540C8698F3CFA", "6FBF1CAFCFFD0556"},
            {"4FB05E1515AB73A7", "072D43A077075292", "2F22E49BAB7CA1AC"},
            {"49E95D6D4CA229BF", "02FE55778117F12A", "5A6B612CC26CCE4A"},
            {"018310DC409B26D6", "1D9D5C5018F728C2", "5F4C038ED12B2E41"},
            {"1C587F1C13924FEF", "305532286D6F295A", "63FAC0D034D9F793"},
        };
        for (const QByteArrayList &vector : vectors)
            QTest::newRow(vector[0].constData()) << vector[0] << vector[1] << vector[2];
    }

    void oneBlockAgreesWithThePublishedVectors()
    {
        QFETCH(QByteArray, key);
        QFETCH(QByteArray, plain);
        QFETCH(QByteArray, cipher);
        clsDES des;
        des.setKey(keyOf(key));
        QCOMPARE(hexOf(des.encryptBlock(block(plain))), cipher);
        QCOMPARE(hexOf(des.decryptBlock(block(cipher))), plain);
    }

    void cipherTextIsHeadSizeAndDataChainedFromZero()
    {
        clsDES des;
        int draws = 0;
        des.setRandom([&draws] { return ++draws == 1 ? 0.5 : 0.0; });
        QByteArray bytes = "secret";
        des.EncryptByte(bytes, u"12345678"_s);
        QCOMPARE(bytes.size(), 24);

        QByteArray plain;
        clsDES::Block chain{};
        for (qsizetype offset = 0; offset < bytes.size(); offset += 8) {
            const clsDES::Block cipher = block(bytes.mid(offset, 8).toHex());
            const clsDES::Block deciphered = des.decryptBlock(cipher);
            for (std::size_t i = 0; i < 8; ++i)
                plain += static_cast<char>(deciphered[i] ^ chain[i]);
            chain = cipher;
        }
        // 0.5 times 2147483647 lies halfway and goes to the even neighbour, 40000000 hex.
        QCOMPARE(plain.toHex(),
                 QByteArray("0000004000000000") + "06000000" + QByteArray("secret").toHex() + "000000000000");
    }

    void whatWasEncipheredDeciphers()
    {
        const QList<QPair<QString, int>> texts = {
            {u"abcd"_s, 16},           {u"abcde"_s, 24},
            {u"mot de passé €"_s, 32}, {AnsiText::fromBytes(QByteArray::fromHex("00ff8081a0090d0a")), 24},
            {QString(100, u'x'), 112},
        };
        for (const auto &[text, cipherSize] : texts) {
            clsDES des;
            QString raw = des.EncryptString(text, u"a key"_s, false);
            QCOMPARE(raw.size(), cipherSize);
            QCOMPARE(des.DecryptString(raw, u"a key"_s, false), text);
            QString in64 = des.EncryptString(text, u"a key"_s, true);
            QVERIFY(in64 != des.EncryptString(text, u"a key"_s, true)); // no two runs are alike
            clsDES other;
            QCOMPARE(other.DecryptString(in64, u"a key"_s, true), text);
        }
    }

    void keyIsCutToEightCharactersAndKeptBetweenCalls()
    {
        clsDES des;
        QString cipher = des.EncryptString(u"password"_s, u"%%K9:Tm417"_s, true);
        QString again = cipher;
        QCOMPARE(des.DecryptString(again, u"%%K9:Tm4"_s, true), u"password");
        QCOMPARE(des.DecryptString(cipher, QString(), true), u"password");
        // A short key is filled with zeros.
        des.setKey(u"abc"_s);
        const QByteArray filled = hexOf(des.encryptBlock({}));
        des.setKey(u"abc"_s + QString(5, QChar(0)));
        QCOMPARE(hexOf(des.encryptBlock({})), filled);
    }

    void wrongKeyOrBrokenCipherTextIsSilent()
    {
        clsDES des;
        QByteArray bytes = "some text";
        des.EncryptByte(bytes, u"right"_s);
        const QByteArray cipher = bytes;
        des.DecryptByte(bytes, u"wrong"_s);
        QCOMPARE(bytes.size(), cipher.size());
        QVERIFY(bytes != cipher);

        QByteArray cut = cipher.left(13);
        des.DecryptByte(cut, u"right"_s);
        QCOMPARE(cut.size(), 13);
        QByteArray nothing;
        des.DecryptByte(nothing, u"right"_s);
        QVERIFY(nothing.isEmpty());

        for (const char size : {-1, -2, -3, -4}) { // the first three lie within what the array's length allows for
            QByteArray forged = "text";
            des.EncryptByte(forged, u"right"_s);
            for (int i = 0; i < 4; ++i) // what is changed in a block is changed alike in the plain text of the next
                forged[i] = static_cast<char>(forged[i] ^ (i == 0 ? 4 : 0) ^ (i == 0 ? size : -1));
            des.DecryptByte(forged, u"right"_s);
            QCOMPARE(forged.size(), 16);
            QVERIFY(forged.endsWith("text"));
        }
    }

    void emptyTextDeciphersToItsWholeBlock()
    {
        clsDES des;
        des.setRandom([] { return 0.0; });
        QString cipher = des.EncryptString(QString(), u"k"_s, false);
        QCOMPARE(cipher.size(), 16);
        QCOMPARE(des.DecryptString(cipher, u"k"_s, false), QString(16, QChar(0)));
    }

    void base64LinesBreakAfter76Characters_data()
    {
        QTest::addColumn<int>("bytes");
        QTest::addColumn<QList<int>>("lines");
        QTest::addColumn<bool>("endsWithBreak");
        QTest::newRow("one full line has no break") << 57 << QList<int>{76} << false;
        QTest::newRow("one byte more") << 58 << QList<int>{76, 4} << false;
        QTest::newRow("two full lines end with a break") << 114 << QList<int>{76, 76} << true;
    }

    void base64LinesBreakAfter76Characters()
    {
        QFETCH(int, bytes);
        QFETCH(QList<int>, lines);
        QFETCH(bool, endsWithBreak);
        clsDES des;
        const QByteArray input(bytes, '\xfb');
        const QString coded = des.EncodeArray64(input);
        QList<int> lengths;
        const QStringList parts = coded.split(u"\r\n"_s, Qt::SkipEmptyParts);
        for (const QString &line : parts)
            lengths.append(static_cast<int>(line.size()));
        QCOMPARE(lengths, lines);
        QCOMPARE(coded.endsWith(u"\r\n"), endsWithBreak);
        QCOMPARE(des.DecodeArray64(coded), input);
    }

    void strangeBase64IsDecodedWithoutError()
    {
        clsDES des;
        const QList<QPair<QString, QByteArray>> texts = {
            {u""_s, ""},
            {u"Y=W=Jj"_s, "616263"}, // padding in the middle
            {u"YQ"_s, "61"},         // two characters left
            {u"YWI"_s, "6162"},      // three
            {u"YWJjZ"_s, "616263"},  // one
            {u"!é€-"_s, "000000"},   // strangers count as zero
            {u"YW\nj"_s, "616023"},  // and so does a lone line feed
        };
        for (const auto &[coded, hex] : texts)
            QCOMPARE(des.DecodeArray64(coded).toHex(), hex);
    }

    void filesAreConvertedAndNeverOverwrittenUnasked()
    {
        const QTemporaryDir directory;
        const QString plain = directory.filePath(u"plain"_s);
        const QString cipher = directory.filePath(u"cipher"_s);
        const QString back = directory.filePath(u"back"_s);
        const QByteArray content = QByteArray::fromHex("00010aff") + QByteArray(200, 'z');
        Files::write(plain, content);
        clsDES des;
        for (const bool in64 : {false, true}) {
            QVERIFY(des.EncryptFile(plain, cipher, true, u"k"_s, in64));
            QVERIFY(Files::read(cipher).bytes != content);
            QCOMPARE(Files::read(cipher).bytes.contains("\r\n"), in64);
            QVERIFY(des.DecryptFile(cipher, back, true, u"k"_s, in64));
            QCOMPARE(Files::read(back).bytes, content);
        }
        Files::write(cipher, "mine");
        QVERIFY(!des.EncryptFile(plain, cipher, false, u"k"_s));
        QCOMPARE(Files::read(cipher).bytes, QByteArray("mine"));
        QVERIFY(!des.EncryptFile(directory.filePath(u"absent"_s), back, true, u"k"_s));
        QVERIFY(!des.EncryptFile(plain, directory.filePath(u"no/such/place"_s), true, u"k"_s));
    }

    void progressRisesToOneHundred()
    {
        clsDES des;
        QList<int> percents;
        des.setProgress([&percents](int percent) { percents.append(percent); });
        QByteArray bytes(20, 'a');
        des.EncryptByte(bytes, u"k"_s);
        des.DecryptByte(bytes);
        QCOMPARE(percents, (QList<int>{0, 25, 50, 75, 100, 0, 25, 50, 75, 100}));
    }

    void decryptStringOverwritesTheTextIn64()
    {
        clsDES des;
        const QString raw = des.EncryptString(u"abcd"_s, u"k"_s, false);
        QString text = des.Encode64(raw);
        des.DecryptString(text, u"k"_s, true);
        QCOMPARE(text, raw);
    }
};

QTEST_GUILESS_MAIN(tst_clsDES)
#include "tst_clsDES.moc"

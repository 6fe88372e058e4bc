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

} // namespace

class tst_clsDES : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void oneBlockAgreesWithThePublishedVectors()
    {
        // Key, plain and cipher text of the substitution table test of NBS Special Publication 500-20, which reaches
        // every entry of every box.
        const QByteArrayList vectors{
            "7CA110454A1A6E57 01A1D6D039776742 690F5B0D9A26939B", "0131D9619DC1376E 5CD54CA83DEF57DA 7A389D10354BD271",
            "07A1133E4A0B2686 0248D43806F67172 868EBB51CAB4599A", "3849674C2602319E 51454B582DDF440A 7178876E01F19B2A",
            "04B915BA43FEB5B6 42FD443059577FA2 AF37FB421F8C4095", "0113B970FD34F2CE 059B5E0851CF143A 86A560F10EC6D85B",
            "0170F175468FB5E6 0756D8E0774761D2 0CD3DA020021DC09", "43297FAD38E373FE 762514B829BF486A EA676B2CB7DB2B7A",
            "07A7137045DA2A16 3BDD119049372802 DFD64A815CAF1A0F", "04689104C2FD3B2F 26955F6835AF609A 5C513C9C4886C088",
            "37D06BB516CB7546 164D5E404F275232 0A2AEEAE3FF4AB77", "1F08260D1AC2465E 6B056E18759F5CCA EF1BF03E5DFA575A",
            "584023641ABA6176 004BD6EF09176062 88BF0DB6D70DEE56", "025816164629B007 480D39006EE762F2 A1F9915541020B56",
            "49793EBC79B3258F 437540C8698F3CFA 6FBF1CAFCFFD0556", "4FB05E1515AB73A7 072D43A077075292 2F22E49BAB7CA1AC",
            "49E95D6D4CA229BF 02FE55778117F12A 5A6B612CC26CCE4A", "018310DC409B26D6 1D9D5C5018F728C2 5F4C038ED12B2E41",
            "1C587F1C13924FEF 305532286D6F295A 63FAC0D034D9F793"};
        for (const QByteArray &vector : vectors) {
            const QByteArrayList parts = vector.split(' ');
            clsDES des;
            des.setKey(AnsiText::fromBytes(QByteArray::fromHex(parts[0])));
            QCOMPARE(hexOf(des.encryptBlock(block(parts[1]))), parts[2]);
            QCOMPARE(hexOf(des.decryptBlock(block(parts[2]))), parts[1]);
        }
    }

    void cipherTextIsHeadSizeAndDataChainedFromZero()
    {
        clsDES des;
        int draws = 0;
        QList<int> percents;
        des.setProgress([&percents](int percent) { percents.append(percent); });
        des.setRandom([&draws] { return ++draws == 1 ? 0.5 : 0.0; });
        QByteArray bytes = "secret";
        des.EncryptByte(bytes, u"12345678"_s);
        // What OpenSSL makes of 40000000 hex (halves go to the even neighbour), 0 and 6, low byte first, and the text.
        QCOMPARE(bytes.toHex(), QByteArray("fd9108d8da54d5a3eeb0c863c20286d69308f01e6dfde9f9"));
        QCOMPARE(percents, (QList<int>{0, 33, 66, 100}));
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
            QString in64 = des.Encode64(raw);
            QCOMPARE(des.DecryptString(raw, u"a key"_s, false), text);
            QVERIFY(in64 != des.EncryptString(text, u"a key"_s, true)); // no two runs are alike
            clsDES other;
            QCOMPARE(other.DecryptString(in64, u"a key"_s, true), text);
            QCOMPARE(in64, raw); // the text in Base64 is overwritten
        }
        clsDES des;
        des.setRandom([] { return 0.0; });
        QString nothing = des.EncryptString(QString(), u"k"_s, false);
        QCOMPARE(des.DecryptString(nothing, u"k"_s, false), QString(16, QChar(0)));
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
        QVERIFY(bytes.size() == cipher.size() && bytes != cipher);
        for (const int length : {0, 8, 13}) {
            QByteArray cut = cipher.left(length);
            des.DecryptByte(cut, u"right"_s);
            QCOMPARE(cut.size(), length);
        }
        for (const char size : {-1, -2, -3, -4}) { // the first three lie within what the array's length allows for
            QByteArray forged = "text";
            des.EncryptByte(forged, u"right"_s);
            for (int i = 0; i < 4; ++i) // what is changed in a block is changed alike in the plain text of the next
                forged[i] = static_cast<char>(forged[i] ^ (i == 0 ? 4 : 0) ^ (i == 0 ? size : -1));
            des.DecryptByte(forged, u"right"_s);
            QVERIFY(forged.size() == 16 && forged.endsWith("text"));
        }
    }

    void base64LinesBreakAfter76Characters()
    {
        clsDES des;
        // Bytes, and the lengths of the lines: a result of one full line has no break, two end with one.
        const QList<QPair<int, QList<int>>> sizes{{57, {76}}, {58, {76, 4}}, {114, {76, 76, 0}}};
        for (const auto &[size, lines] : sizes) {
            const QByteArray input(size, '\xfb');
            const QString coded = des.EncodeArray64(input);
            QList<int> lengths;
            for (const QString &line : coded.split(u"\r\n"_s))
                lengths.append(static_cast<int>(line.size()));
            QCOMPARE(lengths, lines);
            QCOMPARE(des.DecodeArray64(coded), input);
        }
        const QList<QPair<QString, QByteArray>> strange = {
            {u""_s, ""},
            {u"Y=W=Jj"_s, "616263"}, // padding in the middle
            {u"YQ"_s, "61"},         // two characters left
            {u"YWI"_s, "6162"},      // three
            {u"YWJjZ"_s, "616263"},  // one
            {u"!é€-"_s, "000000"},   // strangers count as zero
            {u"YW\nj"_s, "616023"},  // and so does a lone line feed
        };
        for (const auto &[coded, hex] : strange)
            QCOMPARE(des.DecodeArray64(coded).toHex(), hex);
    }

    void filesAreConvertedAndNeverOverwrittenUnasked()
    {
        const QTemporaryDir directory;
        const QString plain = directory.filePath(u"plain"_s);
        const QString cipher = directory.filePath(u"cipher"_s);
        const QString back = directory.filePath(u"back"_s);
        Files::write(plain, QByteArray(200, 'z'));
        clsDES des;
        for (const bool in64 : {false, true}) {
            QVERIFY(des.EncryptFile(plain, cipher, true, u"k"_s, in64));
            QCOMPARE(Files::read(cipher).bytes.contains("\r\n"), in64);
            QVERIFY(des.DecryptFile(cipher, back, true, u"k"_s, in64));
            QCOMPARE(Files::read(back).bytes, QByteArray(200, 'z'));
        }
        QVERIFY(!des.EncryptFile(back, plain, false, u"k"_s) && !des.EncryptFile(u"/none"_s, back, true, u"k"_s));
        QCOMPARE(Files::read(plain).bytes, QByteArray(200, 'z'));
    }
};

QTEST_GUILESS_MAIN(tst_clsDES)
#include "tst_clsDES.moc"

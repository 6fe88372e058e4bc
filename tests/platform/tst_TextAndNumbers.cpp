// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/AnsiText.h"
#include "platform/DateText.h"
#include "platform/Dictionary.h"
#include "platform/Literals.h"
#include "platform/Numbers.h"
#include "platform/RunTimeError.h"

#include <QLocale>
#include <QTest>

namespace {

/// The number of the run-time error that `call` raises; 0 when it raises none.
template <class Call>
int errorOf(Call call)
{
    try {
        call();
    } catch (const RunTimeError &error) {
        return error.number();
    }
    return 0;
}

constexpr int overflow = 6;
constexpr int typeMismatch = 13;

} // namespace

class TextAndNumbersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyByteSurvivesTheCodePage();
    void aCharacterOutsideTheCodePageBecomesAQuestionMark();
    void wideningGivesTheLowByteFirst();
    void textConvertsToWholeNumbers_data();
    void textConvertsToWholeNumbers();
    void aNumericPrefixStopsAtTheFirstForeignCharacter_data();
    void aNumericPrefixStopsAtTheFirstForeignCharacter();
    void aSingleIsWrittenShort();
    void datesReadBackWhatTheyWrite_data();
    void datesReadBackWhatTheyWrite();
    void datesOfOtherLocalesAreRead_data();
    void datesOfOtherLocalesAreRead();
    void whatIsNoDateIsATypeMismatch();
    void aReplacedEntryOfADictionaryStandsLast();
};

void TextAndNumbersTest::everyByteSurvivesTheCodePage()
{
    QByteArray all;
    for (int byte = 0; byte < 256; ++byte)
        all.append(static_cast<char>(byte));
    QCOMPARE(AnsiText::toBytes(AnsiText::fromBytes(all)), all);
    QCOMPARE(AnsiText::fromBytes("\x80\x9C\xE9"), u"€œé");
}

void TextAndNumbersTest::aCharacterOutsideTheCodePageBecomesAQuestionMark()
{
    QCOMPARE(AnsiText::toBytes(u"Łódź €"_s), QByteArray("?\xF3"
                                                        "d? \x80"));
}

void TextAndNumbersTest::wideningGivesTheLowByteFirst()
{
    QCOMPARE(AnsiText::toBytes(AnsiText::widenBytes(u"é€"_s)), QByteArray("\xE9\x00\xAC\x20", 4));
    QCOMPARE(AnsiText::widenBytes(QString()), QString());
}

void TextAndNumbersTest::textConvertsToWholeNumbers_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("error");
    QTest::newRow("plain, with blanks") << " 42 " << 42 << 0;
    QTest::newRow("half to the even neighbour below") << "800.5" << 800 << 0;
    QTest::newRow("half to the even neighbour above") << "801,5" << 802 << 0;
    QTest::newRow("negative half") << "-2.5" << -2 << 0;
    QTest::newRow("exponent") << "1e3" << 1000 << 0;
    QTest::newRow("largest") << "32767.4" << 32767 << 0;
    QTest::newRow("one past the largest") << "32768" << 0 << overflow;
    QTest::newRow("huge exponent") << "1e9999" << 0 << overflow;
    QTest::newRow("smallest") << "-32768" << -32768 << 0;
    QTest::newRow("empty") << "" << 0 << typeMismatch;
    QTest::newRow("sign alone") << "-" << 0 << typeMismatch;
    QTest::newRow("letters behind") << "12a" << 0 << typeMismatch;
    QTest::newRow("point alone") << "." << 0 << typeMismatch;
    QTest::newRow("hexadecimal") << "0x10" << 0 << typeMismatch;
    QTest::newRow("not a number") << "nan" << 0 << typeMismatch;
}

void TextAndNumbersTest::textConvertsToWholeNumbers()
{
    QFETCH(QString, text);
    QFETCH(int, value);
    QFETCH(int, error);
    int result = 0;
    QCOMPARE(errorOf([&] { result = Numbers::toInt16(text); }), error);
    QCOMPARE(result, value);
    QCOMPARE(Numbers::isNumeric(text), error != typeMismatch);
}

void TextAndNumbersTest::aNumericPrefixStopsAtTheFirstForeignCharacter_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<double>("value");
    QTest::newRow("digits then letters") << "05Z" << 5.0;
    QTest::newRow("colon behind") << "5:" << 5.0;
    QTest::newRow("colon first") << ":0" << 0.0;
    QTest::newRow("letters") << "ST" << 0.0;
    QTest::newRow("blank inside") << "1 2x" << 12.0;
    QTest::newRow("sign") << "-3" << -3.0;
    QTest::newRow("comma ends it") << "1,5" << 1.0;
    QTest::newRow("empty") << "" << 0.0;
}

void TextAndNumbersTest::aNumericPrefixStopsAtTheFirstForeignCharacter()
{
    QFETCH(QString, text);
    QTEST(Numbers::numericPrefix(text), "value");
}

void TextAndNumbersTest::aSingleIsWrittenShort()
{
    QCOMPARE(Numbers::singleText(12240.0 / 15.0), u"816");
    QCOMPARE(Numbers::singleText(800.5), u"800.5");
    QCOMPARE(Numbers::singleText(1.0 / 3.0), u"0.3333333");
}

void TextAndNumbersTest::datesReadBackWhatTheyWrite_data()
{
    QTest::addColumn<QDateTime>("when");
    QTest::newRow("afternoon") << QDateTime({2004, 7, 1}, {14, 5, 9});
    QTest::newRow("midnight") << QDateTime({2026, 12, 31}, {0, 0});
    QTest::newRow("last century") << QDateTime({1912, 1, 2}, {3, 4, 5});
}

void TextAndNumbersTest::datesReadBackWhatTheyWrite()
{
    QFETCH(QDateTime, when);
    QCOMPARE(DateText::fromText(DateText::toText(when)), when);
    QCOMPARE(DateText::toText(QDateTime({2004, 7, 1}, {14, 0})), u"01/07/2004 14:00:00"); // French in the C locale
    QCOMPARE(DateText::fromText(u"01/07/2004"_s), QDateTime({2004, 7, 1}, {0, 0}));
}

void TextAndNumbersTest::datesOfOtherLocalesAreRead_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QDateTime>("when");
    const QDateTime july({2004, 7, 31}, {14, 5, 9});
    QMap<QString, QDateTime> texts = {{u"99-12-31"_s, QDateTime({1999, 12, 31}, {0, 0})}};
    for (const QString &text : {u"31/7/04 14:05:09"_s, u"31-7-2004 14.05.09"_s, u"07/31/2004 2:05:09 PM"_s,
                                u"7/31/2004 02:05:09 p.m."_s, u"2004年7月31日 14:05:09"_s})
        texts.insert(text, july);
    for (const QLocale &locale :
         QLocale::matchingLocales(QLocale::AnyLanguage, QLocale::AnyScript, QLocale::AnyCountry)) {
        QString format = locale.dateFormat(QLocale::ShortFormat);
        if (!format.contains(u"yyyy"_s))
            format.replace(u"yy"_s, u"yyyy"_s);
        if (!format.contains(u"MMM"_s)) // of the locale that stands for none
            texts.insert(locale.toString(july, format + u" HH:mm:ss"_s), july);
    }
    for (auto text = texts.cbegin(); text != texts.cend(); ++text)
        QTest::newRow(qPrintable(text.key())) << text.key() << text.value();
    const bool dayFirst = QLocale::system().language() != QLocale::English;
    const QDate misread = dayFirst ? QDate(2004, 2, 1) : QDate(2004, 1, 2);
    QTest::newRow("either order") << u"1.2.2004 12:00 AM"_s << QDateTime(misread, {0, 0});
    QTest::newRow("noon") << u"01-02-04 12:30 PM"_s << QDateTime(misread, {12, 30});
    QTest::newRow("the year first") << u"2004 2 1"_s << QDateTime({2004, 2, 1}, {0, 0});
    QTest::newRow("an hour that was left out") << u"28/03/2004 02:30:00"_s << QDateTime({2004, 3, 28}, {3, 30});
}

/// Runs under French and under American dates.
void TextAndNumbersTest::datesOfOtherLocalesAreRead()
{
    QFETCH(QString, text);
    QVERIFY2(DateText::isDate(text), qPrintable(text));
    QTEST(DateText::fromText(text), "when");
}

void TextAndNumbersTest::whatIsNoDateIsATypeMismatch()
{
    for (const QString &text : {u""_s, u"hier"_s, u"32/01/2004 10:00:00"_s, u"31/12/2004 10:00 avant"_s,
                                u"30/02/2004"_s, u"1/2"_s, u"1/2/20045"_s, u"1/2/2004 24:00"_s, u"1 2 3 4 5 6 7"_s}) {
        QVERIFY(!DateText::isDate(text));
        QCOMPARE(errorOf([&] { DateText::fromText(text); }), typeMismatch);
    }
}

void TextAndNumbersTest::aReplacedEntryOfADictionaryStandsLast()
{
    Dictionary<QString> table;
    table.Add(u"1"_s, u"a"_s);
    table.Add(u"2"_s, u"b"_s);
    QCOMPARE(errorOf([&] { table.Add(u"1"_s, u"c"_s); }), 457);
    table.Replace(u"1"_s, u"d"_s);
    QCOMPARE(table.Keys(), QStringList({u"2"_s, u"1"_s}));
    QCOMPARE(table.Item(u"1"_s), u"d");
    QCOMPARE(table.Item(u"3"_s), QString());
    QVERIFY(!table.Exists(u"3"_s));
}

QTEST_GUILESS_MAIN(TextAndNumbersTest)
#include "tst_TextAndNumbers.moc"

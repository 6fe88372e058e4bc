// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/AnsiText.h"
#include "platform/DateText.h"
#include "platform/Dictionary.h"
#include "platform/Literals.h"
#include "platform/Numbers.h"
#include "tests/fixtures/RunTimeErrors.h"

#include <QLocale>
#include <QTest>

#include <tuple>

namespace {

constexpr int overflow = 6;
constexpr int typeMismatch = 13;

} // namespace

class TextAndNumbersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyByteSurvivesTheCodePage()
    {
        QByteArray all;
        for (int byte = 0; byte < 256; ++byte)
            all.append(static_cast<char>(byte));
        QCOMPARE(AnsiText::toBytes(AnsiText::fromBytes(all)), all);
        QCOMPARE(AnsiText::fromBytes("\x80\x9C\xE9"), u"€œé");
    }

    void aCharacterOutsideTheCodePageBecomesAQuestionMark()
    {
        QCOMPARE(AnsiText::toBytes(u"Łódź €"_s), QByteArray("?\xF3"
                                                            "d? \x80"));
    }

    void wideningGivesTheLowByteFirst()
    {
        QCOMPARE(AnsiText::toBytes(AnsiText::widenBytes(u"é€"_s)), QByteArray("\xE9\x00\xAC\x20", 4));
        QCOMPARE(AnsiText::widenBytes(QString()), QString());
    }

    void textConvertsToNumbers()
    {
        const QList<std::tuple<QString, int, int>> rows = {
            {u" 42 "_s, 42, 0},        {u"800.5"_s, 800, 0},         {u"801,5"_s, 802, 0},
            {u"-2.5"_s, -2, 0},        {u"1e3"_s, 1000, 0},          {u"32767.4"_s, 32767, 0},
            {u"32768"_s, 0, overflow}, {u"1e9999"_s, 0, overflow},   {u"-32768"_s, -32768, 0},
            {u""_s, 0, typeMismatch},  {u"-"_s, 0, typeMismatch},    {u"12a"_s, 0, typeMismatch},
            {u"."_s, 0, typeMismatch}, {u"0x10"_s, 0, typeMismatch}, {u"nan"_s, 0, typeMismatch}};
        for (const auto &[text, value, error] : rows) {
            int result = 0;
            QCOMPARE(errorOf([&, text = text] { result = Numbers::toInt16(text); }), error);
            QCOMPARE(result, value);
            QCOMPARE(Numbers::isNumeric(text), error != typeMismatch);
        }
        // A numeric prefix stops at the first foreign character.
        const QList<QPair<QString, double>> prefixes = {{u"05Z"_s, 5},   {u"5:"_s, 5},  {u":0"_s, 0},  {u"ST"_s, 0},
                                                        {u"1 2x"_s, 12}, {u"-3"_s, -3}, {u"1,5"_s, 1}, {u""_s, 0}};
        for (const auto &[text, value] : prefixes)
            QCOMPARE(Numbers::numericPrefix(text), value);
    }

    void aSingleIsWrittenShort()
    {
        QCOMPARE(Numbers::singleText(12240.0 / 15.0), u"816");
        QCOMPARE(Numbers::singleText(800.5), u"800.5");
        QCOMPARE(Numbers::singleText(1.0 / 3.0), u"0.3333333");
    }

    void datesReadBackWhatTheyWrite()
    {
        for (const QDateTime &when : {QDateTime({2004, 7, 1}, {14, 5, 9}), QDateTime({2026, 12, 31}, {0, 0}),
                                      QDateTime({1912, 1, 2}, {3, 4, 5})})
            QCOMPARE(DateText::fromText(DateText::toText(when)), when);
        QCOMPARE(DateText::toText(QDateTime({2004, 7, 1}, {14, 0})), u"01/07/2004 14:00:00"); // French in the C locale
        QCOMPARE(DateText::fromText(u"01/07/2004"_s), QDateTime({2004, 7, 1}, {0, 0}));
    }

    /// Runs under French and under American dates.
    void datesOfOtherLocalesAreRead()
    {
        const QDateTime july({2004, 7, 31}, {14, 5, 9});
        const bool dayFirst = QLocale::system().language() != QLocale::English;
        const QDate either = dayFirst ? QDate(2004, 2, 1) : QDate(2004, 1, 2);
        QMap<QString, QDateTime> texts = {
            {u"99-12-31"_s, QDateTime({1999, 12, 31}, {0, 0})},
            {u"1.2.2004 12:00 AM"_s, QDateTime(either, {0, 0})},
            {u"01-02-04 12:30 PM"_s, QDateTime(either, {12, 30})},
            {u"2004 2 1"_s, QDateTime({2004, 2, 1}, {0, 0})},
            {u"28/03/2004 02:30:00"_s, QDateTime({2004, 3, 28}, {3, 30})}, // an hour that was left out
        };
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
        for (auto text = texts.cbegin(); text != texts.cend(); ++text) {
            QVERIFY2(DateText::isDate(text.key()), qPrintable(text.key()));
            QCOMPARE(DateText::fromText(text.key()), text.value());
        }
    }

    void whatIsNoDateIsATypeMismatch()
    {
        for (const QString &text :
             {u""_s, u"hier"_s, u"32/01/2004 10:00:00"_s, u"31/12/2004 10:00 avant"_s, u"30/02/2004"_s, u"1/2"_s,
              u"1/2/20045"_s, u"1/2/2004 24:00"_s, u"1 2 3 4 5 6 7"_s}) {
            QVERIFY(!DateText::isDate(text));
            QCOMPARE(errorOf([&] { DateText::fromText(text); }), typeMismatch);
        }
    }

    void aReplacedEntryOfADictionaryStandsLast()
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
};

QTEST_GUILESS_MAIN(TextAndNumbersTest)
#include "tst_TextAndNumbers.moc"

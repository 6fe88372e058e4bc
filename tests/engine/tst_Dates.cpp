// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/StandardDates.h"
#include "platform/Literals.h"
#include "platform/RunTimeError.h"
#include "tests/fixtures/Steps.h"

#include <QTest>

namespace {

TimeZoneRecord paris()
{
    return {true, -60, 3, -60}; // in summer: two hours ahead of UTC
}

/// The local date of `text`, or the number of the run-time error.
QString outcome(const QString &text, const DateReader &reader = Dates(paris))
{
    try {
        const QDateTime date = reader.NormaliseDate(text);
        return !date.isValid() ? u"none"_s : date.date().toString(Qt::ISODate) + date.time().toString(u" HH:mm:ss"_s);
    } catch (const RunTimeError &error) {
        return u"error %1"_s.arg(error.number());
    }
}

} // namespace

class DatesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void datesAreReadAndTheirZoneIsApplied_data()
    {
        QTest::addColumn<QString>("expected");
        const auto row = [](const QByteArray &text, const QByteArray &expected) {
            QTest::newRow(text.constData()) << QString::fromLatin1(expected);
        };
        // Dates of the ISO form are read by position.
        row("2004-07-01T12:00:00Z", "2004-07-01 14:00:00");
        row("2004-07-01T12:00:00+02:00", "2004-07-01 12:00:00");
        row("2004-07-01T12:00:00-05:00", "2004-07-01 19:00:00");
        row("2004-07-01T12:00:00+10:00", "2004-07-01 14:00:00"); // zones of ten hours or more lose their tens
        row("2004-07-01T12:00:00+05:30", "2004-06-29 07:00:00"); // counts as 55 hours
        row("2004-07-01T12:00:00-03:30", "2004-07-03 19:00:00"); // counts as 53 hours
        row("2004-07-01T12:00:00.5Z", "2004-07-01 14:00:00");    // the fraction belongs to the zone's text
        row("2004/07/01T12.00.00Z", "2004-07-01 14:00:00");      // separators aren't looked at
        row("2004-02-31T12:00:00Z", "2004-03-02 14:00:00");
        row("2004-13-00T12:00:00Z", "2004-12-31 14:00:00");
        row("0029-01-01T12:00:00Z", "2029-01-01 14:00:00");
        row("0030-01-01T12:00:00Z", "1930-01-01 14:00:00");
        row("2004-07-01T22:59:60Z", "2004-07-02 01:00:00");
        row("2004-12-31T23:59:59-01:00", "2005-01-01 02:59:59");
        row("-001-01-01T00:00:00Z", "error 5");
        row("0000-01-01T00:00:00Z", "2000-01-01 02:00:00");
        row("0099-01-01T00:00:00Z", "1999-01-01 02:00:00");
        row("0100-01-01T00:00:00Z", "0100-01-01 02:00:00");
        row("0100-01-01T00:00:00+01:00", "error 5"); // on the way
        row("0100-00-01T00:00:00Z", "error 5");
        row("9999-12-31T21:59:59Z", "9999-12-31 23:59:59");
        row("9999-12-31T23:00:00Z", "error 5");
        row("9999-13-01T00:00:00Z", "error 5");
        row("2004-07-01T-1:00:00Z", "error 13");
        row("2004-07-01T1 :5 :9 z", "2004-07-01 03:05:09"); // numbers with blanks
        row("2004-07-01T23:59:60Z", "error 13");
        row("2004-07-01T12:00:00+1:00", "2004-07-01 13:00:00");
        row("2004-07-01T12:00:00+5x", "error 13");
        row("2004-07-01T12:00:00+00:20", "2004-06-30 05:00:00"); // 33.3 hours
        row("2004-07-01T12:00:00+00:03", "2004-07-01 09:00:00"); // 5 hours
        row("2004-07-01T24:00:00Z", "error 13");                 // no text of a time
        row("2004-07-01T12:00:00", "error 5");                   // no zone: the position of its hours is negative
        row("2004-07-01T12:00:00GMT", "error 13");
        row("2004-07-01T", "error 13");
        row("2004-07-xxT12:00:00Z", "error 13");
        row("  2004-07-01T12:00:00Z  ", "2004-07-01 14:00:00"); // only blanks are trimmed
        row("2004-07-01t12:00:00Z", "1999-11-30 02:00:00");     // a small "t" is no mark of the form
        // Dates of the Internet form.
        row("Thu, 01 Jul 2004 12:00:00 GMT", "2004-07-01 14:00:00");
        row("Thu, 01 Jul 2004 12:00:00 +0200", "2004-07-01 12:00:00");
        row("Thu, 01 Jul 2004 12:00:00 +0530", "2004-06-29 07:00:00"); // counts as 55 hours
        row("Thu, 01 Jul 2004 12:00:00", "2004-07-01 14:00:00");       // 25 characters: no zone
        row("Mon, 01 Jul 2004 12:00:00 GMT", "2004-07-01 14:00:00");   // the weekday isn't compared
        row("Thu, 1 jul 04 12:00 GMT", "2004-07-01 14:00:00");
        row("1 July 99 12:00 +0000", "1999-07-01 14:00:00");
        row("Thursday, 01-Jul-04 12:00:00 GMT", "2004-07-01 14:00:00");
        row("Thu Jul  1 12:00:00 2004", "2004-07-01 07:00:00"); // the year is taken for a zone: 0 + 4 * 100 / 60
        row("Thu, 01 Jul 2004 12:00:00 gmt", "2004-07-01 14:00:00");
        row("01 Jul 2004 12:00:00", "2004-06-30 18:00:00"); // the time is taken for a zone of 20 hours
        row("Sat, 31 Dec 2016 23:59:60 GMT", "2017-01-01 01:59:59");
        row("Thu, 31 Feb 2004 12:00:00 GMT", "2004-03-02 14:00:00");
        for (const auto &[month, number] : {std::pair("Jan", "01"),
                                            {"FEB", "02"},
                                            {"march", "03"},
                                            {"Apr", "04"},
                                            {"May", "05"},
                                            {"Jun", "06"},
                                            {"Jul", "07"},
                                            {"Aug", "08"},
                                            {"Sept.", "09"},
                                            {"Oct", "10"},
                                            {"Nov", "11"},
                                            {"Dec", "12"}})
            row("2 " + QByteArray(month) + " 2004 03:04:05 +0000", "2004-" + QByteArray(number) + "-02 05:04:05");
        row("Thu, 01 Ju 2004 12:00:00 GMT", "1999-11-30 02:00:00");
        row("Thu,\t01\tJul\t2004\t12:00:00 GMT", "2004-07-01 14:00:00");
        row("Thu, 00 Jul 2004 12:00:00 GMT", "1999-11-30 02:00:00");
        row("Thu, 31 Jul 2004 12:00:00 GMT", "2004-07-31 14:00:00");
        row("Thu, 32 Jul 2004 12:00:00 GMT", "1999-11-30 02:00:00");
        row("Thu, 01 02 Jul 2004 12:00:00 GMT", "1999-11-30 02:00:00"); // 1902, and the third number is none
        row("Thu, 01 Jul 49 12:00:00 GMT", "2049-07-01 14:00:00");
        row("Thu, 01 Jul 50 12:00:00 GMT", "1950-07-01 14:00:00");
        row("Thu, 01 Jul 104 12:00:00 GMT", "2004-07-01 14:00:00");
        row("Thu, 01 Jul 0099 12:00:00 GMT", "1999-11-30 02:00:00");
        row("Thu, 01 Jul 0100 12:00:00 GMT", "0100-07-01 14:00:00");
        row("Thu, 01 Jul 20045 12:00:00 GMT", "1999-11-30 02:00:00");
        row("Thu, 01 Jul 2004 GMT", "2004-07-01 02:00:00");
        row("Thu, 12:00 01 Jul 2004 GMT", "2004-07-01 14:00:00");
        row("Thu, 12:00 13:00 01 Jul 2004 GMT", "1999-11-30 02:00:00");
        row("Thu, 01 Jul 2004 23:59:59 GMT", "2004-07-02 01:59:59");
        row("Thu, 01 Jul 2004 24:00 GMT", "1999-11-30 02:00:00");
        row("Thu, 01 Jul 2004 12:60 GMT", "1999-11-30 02:00:00");
        row("Thu, 01 Jul 2004 12:00:61 GMT", "1999-11-30 02:00:00");
        row("Thu, 01 Jul 2004 -1:00 GMT", "1999-11-30 02:00:00");
        row("Thu, 01 Jul 2004 : GMT", "1999-11-30 02:00:00");
        row("Thu, 01 Jul 2004 12:00: GMT", "1999-11-30 02:00:00");
        row("Thu, 01 Jul 2004 12:00:00 -0100", "2004-07-01 15:00:00");
        row("Thu, 01 Jul 2004 12:00:00 +01:00", "2004-07-01 13:00:00");
        row("Thu, 01 Jul 2004 12:00:00 EST", "2004-07-01 14:00:00"); // a name is no zone
        row("Thu, 01 Jul 2004 12:00:00 -EST", "2004-07-01 14:00:00");
        row("Thu,-1234", "1999-11-30 02:00:00");
        row("Thu,1234", "1999-11-30 02:00:00");
        row("Thu,12", "1999-11-30 02:00:00");
        row("", "1999-11-30 02:00:00");
        row("Thu, 01 Jul 2004 25:00:00 GMT", "1999-11-30 02:00:00");
        row("2004-07-01", "1999-11-30 00:00:00"); // the day is taken for the minutes of a zone
        row("a,b", "error 5");
        row("Thu, 01 Jul 9999 12:00:00 -9999", "9999-07-12 14:00:00");
        row("Fri, 31 Dec 9999 12:00:00 -9900", "error 5");
        // 02:30 of that night doesn't exist in Paris, but the offset is that of today, whatever the date.
        row("Sun, 28 Mar 2004 00:30:00 GMT", "2004-03-28 02:30:00");
    }

    void datesAreReadAndTheirZoneIsApplied()
    {
        const QString text = QString::fromLatin1(QTest::currentDataTag());
        QTEST(outcome(text), "expected");
    }

    /// The record of each zone, and the offset that it gives now.
    void theMachinesZoneAgreesWithItsClock()
    {
        const QByteArray before = qgetenv("TZ");
        QByteArray said;
        for (const char *zone : {"Europe/Paris", "America/New_York", "Australia/Sydney", "Asia/Kolkata", "UTC",
                                 "Europe/Dublin", "EST5EDT,M3.2.0,M11.1.0", "EST5EDT,0/0,J365/25"}) {
            qputenv("TZ", zone);
            const TimeZoneRecord record = Dates::machineTimeZone();
            const bool agrees = Dates().LocalOffsetSeconds() == QDateTime::currentDateTime().offsetFromUtc();
            for (const int number : {record.bias, int(record.daylightMonth), record.daylightBias})
                said += QByteArray::number(number) + ' ';
            said += QByteArray(agrees ? "" : "wrong ") + zone + "\n";
        }
        qputenv("TZ", before);
        QCOMPARE(said, QByteArray("-60 3 -60 Europe/Paris\n300 3 -60 America/New_York\n-600 10 -60 Australia/Sydney\n"
                                  "-330 0 0 Asia/Kolkata\n0 0 0 UTC\n-60 10 60 Europe/Dublin\n"
                                  "300 3 -60 EST5EDT,M3.2.0,M11.1.0\n240 1 0 EST5EDT,0/0,J365/25\n"));
    }

    /// A line each: by the usual rules, and by the standards.
    void datesAreReadAsTheirStandardsSay()
    {
        const Dates local(paris);
        const StandardDates dates(local);
        const auto take = [&](const QString &step) -> QString {
            const QString text = step.mid(1).chopped(1);
            return outcome(text) + u" | "_s + outcome(text, dates);
        };
        QCOMPARE((Steps{{}, take}.differenceFrom(u"standard-dates.steps"_s)), QString());
    }

    void anOffsetIsThatOfTheRecord()
    {
        const QList<QPair<TimeZoneRecord, qint32>> rows = {{{true, -60, 3, -60}, 7200},
                                                           {{false, -60, 3, -60}, 3600},
                                                           {{true, -60, 0, -60}, 3600},
                                                           {{true, 210, 3, -30}, -10800}};
        for (const auto &[record, seconds] : rows)
            QCOMPARE(Dates([&record = record] { return record; }).LocalOffsetSeconds(), seconds);
    }
};

QTEST_GUILESS_MAIN(DatesTest)
#include "tst_Dates.moc"

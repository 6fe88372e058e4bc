// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/Dates.h"
#include "platform/Literals.h"
#include "platform/RunTimeError.h"

#include <QTest>

#include <functional>

namespace {

TimeZoneRecord paris()
{
    return {true, -60, 3, -60}; // in summer: two hours ahead of UTC
}

/// The result as text, or the number of the run-time error.
QString outcome(const std::function<QDateTime()> &action)
{
    try {
        const QDateTime date = action();
        return date.date().toString(Qt::ISODate) + date.time().toString(u" HH:mm:ss"_s);
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
        const auto row = [](const char *text, const char *expected) {
            QTest::newRow(text) << QString::fromLatin1(expected);
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
        row("9999-12-31T23:00:00Z", "error 5");
        row("2004-07-01T24:00:00Z", "error 13"); // no text of a time
        row("2004-07-01T12:00:00", "error 5");   // no zone: the position of its hours is negative
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
        QTEST(outcome([&] { return Dates(paris).NormaliseDate(text); }), "expected");
    }

    void theMachinesZoneAgreesWithItsClock_data()
    {
        QTest::addColumn<QByteArray>("zone");
        for (const char *zone : {"Europe/Paris", "America/New_York", "Australia/Sydney", "Asia/Kolkata", "UTC",
                                 "Europe/Dublin", "EST5EDT,M3.2.0,M11.1.0"})
            QTest::newRow(zone) << QByteArray(zone);
    }

    void theMachinesZoneAgreesWithItsClock()
    {
        QFETCH(QByteArray, zone);
        const QByteArray before = qgetenv("TZ");
        qputenv("TZ", zone);
        const qint32 offset = Dates().LocalOffsetSeconds();
        const TimeZoneRecord record = Dates::machineTimeZone();
        const int expected = QDateTime::currentDateTime().offsetFromUtc();
        qputenv("TZ", before);
        QCOMPARE(offset, expected);
        const bool changes = !QByteArrayList{"Asia/Kolkata", "UTC"}.contains(zone);
        QCOMPARE(record.daylightMonth != 0, changes);
        if (zone == "Europe/Paris") {
            QCOMPARE(record.bias, -60);
            QCOMPARE(record.daylightBias, -60);
            QCOMPARE(record.daylightMonth, qint16(3));
        }
    }
};

QTEST_GUILESS_MAIN(DatesTest)
#include "tst_Dates.moc"

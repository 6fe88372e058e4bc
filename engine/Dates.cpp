// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/Dates.h"

#include "engine/InternetDate.h"
#include "platform/Literals.h"
#include "platform/Numbers.h"
#include "platform/RunTimeError.h"

#include <cmath>

namespace {

constexpr qint64 secondsOfDay = 86400;

QString trimmedOfSpaces(const QString &text)
{
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && text[begin] == u' ')
        ++begin;
    while (end > begin && text[end - 1] == u' ')
        --end;
    return text.mid(begin, end - begin);
}

/// `count` characters from `position`, counted from 1; what lies past the end is left out.
QStringView cut(const QString &text, qsizetype position, qsizetype count)
{
    if (position < 1)
        throw RunTimeError::invalidCall();
    const QStringView view(text);
    return position > view.size() ? QStringView() : view.mid(position - 1, count);
}

int digitValue(QChar c)
{
    return c >= u'0' && c <= u'9' ? c.unicode() - u'0' : -1;
}

/// Numbers::toInt16, without its cost where the text is one to four digits.
qint16 wholeNumber(QStringView text)
{
    int value = 0;
    for (const QChar c : text) {
        const int digit = digitValue(c);
        if (digit < 0 || text.size() > 4)
            return Numbers::toInt16(text.toString());
        value = 10 * value + digit;
    }
    if (text.isEmpty())
        throw RunTimeError::typeMismatch();
    return static_cast<qint16>(value);
}

/// Numbers::numericPrefix, without its cost where the text is two digits.
double prefix(QStringView text)
{
    if (text.size() == 2 && digitValue(text[0]) >= 0 && digitValue(text[1]) >= 0)
        return 10 * digitValue(text[0]) + digitValue(text[1]);
    return Numbers::numericPrefix(text.toString());
}

/// Hours by which a zone shifts. The minutes are scaled to hundredths and added to the hours as they stand, so that a
/// zone off the whole hour comes out far away: dates that users know from their lists keep their text (docs/dates.md).
qint64 shiftOf(double hours, double minutes)
{
    return static_cast<qint64>(std::nearbyint(hours + minutes * 100 / 60));
}

QDateTime dateAt(QDate date, qint64 secondOfDay)
{
    const QTime time = QTime::fromMSecsSinceStartOfDay(static_cast<int>(secondOfDay * 1000));
    const QDateTime local(date, time);
    // A time that daylight saving skips is no valid local time, though it is a result like any other here.
    return local.isValid() ? local : QDateTime(date, time, Qt::UTC);
}

QDateTime addSeconds(const QDateTime &when, qint64 seconds)
{
    const qint64 total = when.time().msecsSinceStartOfDay() / 1000 + seconds;
    const qint64 days = total >= 0 ? total / secondsOfDay : -((secondsOfDay - 1 - total) / secondsOfDay);
    const QDate date = when.date().addDays(days);
    if (!date.isValid() || date.year() < 100 || date.year() > 9999)
        throw RunTimeError::invalidCall();
    return dateAt(date, total - days * secondsOfDay);
}

/// The date of year, month and day; a month or a day out of range counts on from the neighbouring year or month, and
/// years of two digits stand for 1930 to 2029.
QDate dateOf(int year, int month, int day)
{
    if (year >= 0 && year < 100)
        year += year < 30 ? 2000 : 1900;
    if (year < 100 || year > 9999)
        throw RunTimeError::invalidCall();
    const QDate date = QDate(year, 1, 1).addMonths(month - 1).addDays(day - 1);
    if (date.year() < 100 || date.year() > 9999)
        throw RunTimeError::invalidCall();
    return date;
}

/// Date and time joined. Minutes and seconds count on into the hours, but what makes a day or more is no text of a
/// time.
QDateTime join(int year, int month, int day, int hour, int minute, int second)
{
    const QDate date = dateOf(year, month, day);
    const qint64 seconds = 3600LL * hour + 60LL * minute + second;
    if (seconds < 0 || seconds >= secondsOfDay)
        throw RunTimeError::typeMismatch();
    return dateAt(date, seconds);
}

} // namespace

Dates::Dates(std::function<TimeZoneRecord()> timeZone) : m_timeZone(std::move(timeZone)) {}

QDateTime Dates::NormaliseDate(const QString &text) const
{
    const QString trimmed = trimmedOfSpaces(text);
    return trimmed.size() > 10 && trimmed[10] == u'T' ? ParseIsoDate(trimmed) : ParseInternetDate(trimmed);
}

QDateTime Dates::ParseIsoDate(const QString &text) const
{
    const QDateTime date =
        join(wholeNumber(cut(text, 1, 4)), wholeNumber(cut(text, 6, 2)), wholeNumber(cut(text, 9, 2)),
             wholeNumber(cut(text, 12, 2)), wholeNumber(cut(text, 15, 2)), wholeNumber(cut(text, 18, 2)));
    QString zone = cut(text, 20, text.size()).toString();
    zone.replace(u'Z', "+00:00"_L1, Qt::CaseInsensitive);
    const bool positive = zone.startsWith(u'+');
    // A missing zone fails at the position of its hours, not at its minutes.
    const qint16 minutes = zone.isEmpty() ? qint16(0) : wholeNumber(QStringView(zone).last(qMin(zone.size(), 2)));
    // The hours are read one place too far to the right: zones of ten hours or more lose their tens (docs/dates.md).
    const double hours = prefix(cut(zone, zone.size() - 3, 2));
    const qint64 shift = shiftOf(hours, minutes);
    return ToLocalDate(addSeconds(date, 3600 * (positive ? -shift : shift)));
}

QDateTime Dates::ParseInternetDate(const QString &dateText) const
{
    QString text = dateText;
    text.replace("GMT"_L1, "+0000"_L1);
    if (trimmedOfSpaces(text).size() == 25) // a full date with seconds and no zone
        text += " +0000"_L1;
    if (!text.contains(u','))
        text.prepend("Thu, "_L1);
    const InternetDate record = InternetDate::read(text); // zeroes when it can't be read
    const QDateTime date = join(record.year, record.month, record.day, record.hour, record.minute, record.second);

    QString compact = text;
    compact.remove(u':');
    const bool positive = cut(compact, compact.size() - 4, 1) != u"-";
    qint64 shift = 0;
    const qsizetype lastSpace = text.lastIndexOf(u' ');
    if (lastSpace >= 0) {
        QString zone = text.mid(lastSpace + 2); // past the sign, or past the first letter of a zone without one
        zone.remove(u':');
        const double minutes = prefix(QStringView(text).last(2));
        shift = shiftOf(prefix(QStringView(zone).first(qMin(zone.size(), 2))), minutes);
    }
    return ToLocalDate(addSeconds(date, 3600 * (positive ? -shift : shift)));
}

QDateTime Dates::ToLocalDate(const QDateTime &date) const
{
    return addSeconds(date, LocalOffsetSeconds());
}

qint32 Dates::LocalOffsetSeconds() const
{
    const TimeZoneRecord zone = m_timeZone();
    qint32 seconds = zone.bias * -60;
    if (zone.daylight && zone.daylightMonth != 0)
        seconds -= zone.daylightBias * 60;
    return seconds;
}

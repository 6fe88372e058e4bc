// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/Dates.h"

#include <QByteArray>

#include <ctime>

namespace {

constexpr std::time_t hourInSeconds = 3600;
constexpr std::time_t dayInSeconds = 24 * hourInSeconds;
constexpr std::time_t noon = 12;

std::tm localTime(std::time_t when)
{
    std::tm fields{};
    localtime_r(&when, &fields);
    return fields;
}

/// Looks through the days of this year for the two offsets of the zone and for the month in which daylight time begins.
TimeZoneRecord readRecord(std::time_t now)
{
    tzset();
    const std::tm present = localTime(now);
    TimeZoneRecord record;
    record.daylight = present.tm_isdst > 0;
    std::tm standard = present;
    std::tm daylight = present;
    // At noon, when a change of the night before is over, be it that of the last day of a month.
    const std::time_t midday = now + (noon - present.tm_hour) * hourInSeconds;
    const std::time_t newYear = midday - present.tm_yday * dayInSeconds;
    bool before = localTime(newYear).tm_isdst > 0;
    for (int day = 0; day < 366; ++day) {
        const std::tm fields = localTime(newYear + day * dayInSeconds);
        const bool saves = fields.tm_isdst > 0;
        (saves ? daylight : standard) = fields;
        if (saves && !before)
            record.daylightMonth = static_cast<qint16>(fields.tm_mon + 1);
        before = saves;
    }
    if (daylight.tm_isdst > 0 && record.daylightMonth == 0)
        record.daylightMonth = 1; // daylight time all the year round
    // Each of the two is the present offset where it is in force: a zone may have changed its rules within the year.
    const std::tm &ofStandard = record.daylight ? standard : present;
    const std::tm &ofDaylight = record.daylight ? present : daylight;
    record.bias = static_cast<qint32>(-ofStandard.tm_gmtoff / 60);
    if (record.daylightMonth != 0)
        record.daylightBias = static_cast<qint32>(-(ofDaylight.tm_gmtoff - ofStandard.tm_gmtoff) / 60);
    return record;
}

} // namespace

TimeZoneRecord Dates::machineTimeZone()
{
    // A list of thousands of rows asks for each of them; the zone can't change more often than each minute.
    static std::time_t minute = -1;
    static QByteArray variable;
    static TimeZoneRecord record;
    const std::time_t now = std::time(nullptr);
    if (now / 60 != minute || qgetenv("TZ") != variable) {
        minute = now / 60;
        variable = qgetenv("TZ");
        record = readRecord(now);
    }
    return record;
}

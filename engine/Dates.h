// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/DateReader.h"

#include <functional>

/// The machine's time zone, as the platform describes it.
struct TimeZoneRecord
{
    bool daylight = false;    ///< daylight time is in force now
    qint32 bias = 0;          ///< minutes: UTC is local time plus this (standard time)
    qint16 daylightMonth = 0; ///< month in which daylight time begins; 0 when the zone knows none
    qint32 daylightBias = 0;  ///< minutes added to the bias in daylight time, -60 as a rule
};

/// Dates of feed items, turned into the machine's local time. For display only.
///
/// Both forms that feeds use are read: the ISO form, by fixed positions, and the form of Internet mail headers (RFC
/// 822). Zones that aren't on the whole hour come out wrong, and an unreadable Internet form comes out as 30 November
/// 1999. docs/dates.md tells why these results stay.
class Dates final : public DateReader
{
public:
    /// `timeZone` is asked at each date. By default it is that of the machine.
    explicit Dates(std::function<TimeZoneRecord()> timeZone = machineTimeZone);

    /// Always a valid date. Throws RunTimeError (type mismatch, invalid call, overflow) where a step can't be
    /// taken.
    QDateTime NormaliseDate(const QString &text) const override;

    QDateTime ParseIsoDate(const QString &text) const;
    QDateTime ParseInternetDate(const QString &text) const;

    /// `date` plus LocalOffsetSeconds().
    QDateTime ToLocalDate(const QDateTime &date) const;

    /// Seconds to add to UTC.
    qint32 LocalOffsetSeconds() const;

    static TimeZoneRecord machineTimeZone();

private:
    std::function<TimeZoneRecord()> m_timeZone;
};

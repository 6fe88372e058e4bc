// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/Dates.h"

/// Dates in all forms of the standards that feeds go by: those of mail headers (RFC 822, 2822, 5322, 850 and asctime:
/// named zones, zones off the whole hour, comments, without seconds, years of two digits) and those of RFC 3339 and
/// W3CDTF (down to a year alone, fractions of seconds, blanks for the "T"). A text in no such form is no date.
///
/// A date is brought to local time by the same offset as the usual reader brings it, so that those which that one reads
/// right stay what they are. One without a time is of that day wherever it is read.
class StandardDates final : public DateReader
{
public:
    /// `local` knows the machine's time zone, and outlives the object.
    explicit StandardDates(const Dates &local) : m_local(local) {}

    /// Never throws.
    QDateTime NormaliseDate(const QString &text) const override;

private:
    const Dates &m_local;
};

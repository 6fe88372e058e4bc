// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QStringView>

/// A date in one of the forms of Internet headers, as its fields stand: the zone is not applied.
struct InternetDate
{
    qint16 year = 0;
    qint16 month = 0;
    qint16 day = 0;
    qint16 hour = 0;
    qint16 minute = 0;
    qint16 second = 0;

    /// Reads "Thu, 01 Jul 2004 12:00:00 ..." (RFC 822 and its successors; the seconds and the weekday may be missing),
    /// "Thursday, 01-Jul-04 12:00:00 ..." (RFC 850) and "Thu Jul  1 12:00:00 2004" (asctime). A year of two digits is
    /// of 1950 to 2049. The weekday isn't compared with the date, and a day up to 31 is taken in any month. All zeroes
    /// for a text in no such form. Never fails.
    static InternetDate read(QStringView text);
};

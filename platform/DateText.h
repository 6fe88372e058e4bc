// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QDateTime>
#include <QString>

/// The system's text form of dates: the short date of the system locale with four digits of year, a blank, and hours,
/// minutes and seconds ("01/07/2004 14:00:00"). French (France) where the locale is C or POSIX.
///
/// A file that carries such a text to a system with another date order is misread there: catalogues have always
/// carried their dates so, and nothing in them tells the order.
namespace DateText {

/// `when` (local time) as text.
QString toText(const QDateTime &when);

/// The local time that `text` stands for: what toText() writes, or a date alone (then midnight), or a date in the ISO
/// form with a blank or "T". Throws RunTimeError::typeMismatch() when it is none of these.
QDateTime fromText(const QString &text);

/// True when fromText() would take `text`.
bool isDate(const QString &text);

} // namespace DateText

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QDateTime>
#include <QString>

/// The system's text form of dates: the short date of the system locale with four digits of year, a blank, and hours,
/// minutes and seconds ("01/07/2004 14:00:00"). French (France) where the locale is C or POSIX.
///
/// A file that carries such a text to a system with another date order may be misread there: catalogues have always
/// carried their dates so, and nothing in them tells the order. It is read all the same.
namespace DateText {

/// `when` (local time) as text.
QString toText(const QDateTime &when);

/// The local time that `text` stands for: what toText() writes here or on a system with any other locale, a date alone
/// (then midnight), or a date in the ISO form with a blank or "T".
///
/// Day, month and year are numbers with anything but words between them. A number of more than two digits is the year;
/// day and month are taken in this locale's order, and the other way round where that gives no date. Two digits of a
/// year are those of 1930 to 2029. The time may have "AM" or "PM" behind it. Throws RunTimeError::typeMismatch() for
/// all else.
QDateTime fromText(const QString &text);

/// True when fromText() would take `text`.
bool isDate(const QString &text);

} // namespace DateText

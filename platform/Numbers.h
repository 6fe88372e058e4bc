// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

/// Text and numbers, as the system converts them.
///
/// A text converts when, trimmed of blanks, it is a decimal number with an optional sign, fraction ("." or ",") and
/// exponent. Whole-number types round to the nearest, halves to the even neighbour.
namespace Numbers {

/// True when `text` converts to a number. The empty text doesn't.
bool isNumeric(const QString &text);

/// The number that `text` stands for. Throws RunTimeError::typeMismatch() when it stands for none.
double toDouble(const QString &text);

/// `text` as a signed 16-bit number, rounded. Throws typeMismatch(), or overflow() outside -32768..32767.
qint16 toInt16(const QString &text);

/// `text` as a signed 32-bit number, rounded. Throws typeMismatch(), or overflow().
qint32 toInt32(const QString &text);

/// `value` rounded to 16 bits, halves to even. Throws overflow() when it doesn't fit (or is no number).
qint16 roundToInt16(double value);

/// `value` rounded to 32 bits, halves to even. Throws overflow() when it doesn't fit (or is no number).
qint32 roundToInt32(double value);

/// The number at the beginning of `text`, blanks passed over, up to the first character that can't belong to it;
/// 0 when there is none. Never throws.
double numericPrefix(const QString &text);

/// The shortest decimal text of a single-precision value, with "." before a fraction: "800", "800.5".
QString singleText(double value);

} // namespace Numbers

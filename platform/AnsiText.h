// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QString>

/// The system's ANSI code page: Windows-1252, with its five unassigned bytes (81, 8D, 8F, 90 and 9D hex) standing for
/// the control characters of the same value, so that all 256 bytes go to text and back unchanged.
namespace AnsiText {

/// The bytes of `text`; a character that the code page lacks becomes "?", one for each UTF-16 code unit.
QByteArray toBytes(const QString &text);

/// The text of `bytes`. Every byte gives one character.
QString fromBytes(const QByteArray &bytes);

/// The bytes of `text` as it lies in memory, two for each UTF-16 code unit, low byte first, each turned
/// into one character of the code page. "é" becomes "é" and a zero character. Pages and mails take their texts through
/// this, the page being a file of single bytes whose zeros the pane drops; lists show them as they are.
QString widenBytes(const QString &text);

} // namespace AnsiText

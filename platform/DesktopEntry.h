// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>
#include <QStringList>

/// Texts of the desktop entry format, version 1.5 (freedesktop.org).
namespace DesktopEntry {

/// The value of the key Exec that starts `program` with `arguments`, quoted and escaped, ready to stand in the file.
QString execLine(const QString &program, const QStringList &arguments = {});

/// `text` escaped as a value of type string.
QString stringValue(const QString &text);

} // namespace DesktopEntry

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// A text of lines "name=value" as a user edits it. Names are compared without case, the last line of a name counts;
/// what else there is (comments behind "#" or ";", sections, blank lines, names that nobody knows) stays as it is.
class IniText
{
public:
    explicit IniText(const QString &text);

    /// The value, without blanks at its ends; nothing where no line bears the name.
    std::optional<QString> value(const QString &name) const;

    /// Sets the value in the line that counts, or in a new last line.
    void set(const QString &name, const QString &value);

    QString text() const;

private:
    qsizetype lineOf(const QString &name) const;

    QStringList m_lines;
};

// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/IniText.h"

#include "platform/Literals.h"

IniText::IniText(const QString &text) : m_lines(text.split(u'\n')) {}

/// -1 where no line bears the name.
qsizetype IniText::lineOf(const QString &name) const
{
    for (qsizetype i = m_lines.size() - 1; i >= 0; --i) {
        const QString &line = m_lines[i];
        const qsizetype sign = line.indexOf(u'=');
        if (sign > 0 && QStringView(line).first(sign).trimmed().compare(name, Qt::CaseInsensitive) == 0)
            return i;
    }
    return -1;
}

std::optional<QString> IniText::value(const QString &name) const
{
    const qsizetype line = lineOf(name);
    if (line < 0)
        return std::nullopt;
    return m_lines[line].section(u'=', 1).trimmed();
}

void IniText::set(const QString &name, const QString &value)
{
    const QString line = name + u'=' + value;
    if (const qsizetype known = lineOf(name); known >= 0)
        m_lines[known] = line;
    else
        m_lines.insert(m_lines.last().isEmpty() ? m_lines.size() - 1 : m_lines.size(), line);
}

QString IniText::text() const
{
    const QString text = m_lines.join(u'\n');
    return text.endsWith(u'\n') ? text : text + u'\n';
}

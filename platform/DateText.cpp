// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/DateText.h"

#include "platform/Literals.h"
#include "platform/RunTimeError.h"

#include <QLocale>

namespace {

QLocale dateLocale()
{
    const QLocale system = QLocale::system();
    return system.language() == QLocale::C ? QLocale(QLocale::French, QLocale::France) : system;
}

/// The locale's short date with a year of four digits: a year of two reads back in the wrong century.
QString shortDateFormat(const QLocale &locale)
{
    QString format = locale.dateFormat(QLocale::ShortFormat);
    if (!format.contains("yyyy"_L1))
        format.replace("yy"_L1, "yyyy"_L1);
    return format;
}

QString timeFormat()
{
    return u"HH:mm:ss"_s;
}

QDateTime parse(const QString &text)
{
    const QString trimmed = text.trimmed();
    const QLocale locale = dateLocale();
    const QString format = shortDateFormat(locale);
    QDateTime when = locale.toDateTime(trimmed, format + u' ' + timeFormat());
    if (!when.isValid())
        when = locale.toDate(trimmed, format).startOfDay();
    if (!when.isValid() && trimmed.size() > 4 && trimmed[4] == u'-') {
        QString iso = trimmed;
        if (iso.size() > 10 && iso[10] == u' ')
            iso[10] = u'T';
        when = QDateTime::fromString(iso, Qt::ISODate);
        if (when.isValid())
            when = when.toLocalTime();
    }
    return when;
}

} // namespace

QString DateText::toText(const QDateTime &when)
{
    const QLocale locale = dateLocale();
    return locale.toString(when, shortDateFormat(locale) + u' ' + timeFormat());
}

QDateTime DateText::fromText(const QString &text)
{
    QDateTime when = parse(text);
    if (!when.isValid())
        throw RunTimeError::typeMismatch();
    return when;
}

bool DateText::isDate(const QString &text)
{
    return parse(text).isValid();
}

// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/StandardDates.h"

#include "engine/InternetDate.h"
#include "platform/Literals.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>
#include <optional>

namespace {

/// A date as it is written. Without an offset it is a day without a time.
struct WrittenDate
{
    QDate day;
    int secondOfDay = 0;
    std::optional<int> offset; ///< seconds by which its zone is ahead of UTC
};

constexpr int minute = 60;
constexpr int hour = 60 * minute;

struct NamedZone
{
    QLatin1String name;
    int offset;
};

/// Those of RFC 822, and those that the mail and the feeds of the world use beside them. What isn't here counts as UTC,
/// as RFC 5322 has it; so do the letters of the military zones, which were never used alike.
constexpr std::array<NamedZone, 34> namedZones{{
    {"EST"_L1, -5 * hour},
    {"EDT"_L1, -4 * hour},
    {"CST"_L1, -6 * hour},
    {"CDT"_L1, -5 * hour},
    {"MST"_L1, -7 * hour},
    {"MDT"_L1, -6 * hour},
    {"PST"_L1, -8 * hour},
    {"PDT"_L1, -7 * hour},
    {"AKST"_L1, -9 * hour},
    {"AKDT"_L1, -8 * hour},
    {"HST"_L1, -10 * hour},
    {"AST"_L1, -4 * hour},
    {"ADT"_L1, -3 * hour},
    {"NST"_L1, -(3 * hour + 30 * minute)},
    {"NDT"_L1, -(2 * hour + 30 * minute)},
    {"BST"_L1, 1 * hour},
    {"WEST"_L1, 1 * hour},
    {"CET"_L1, 1 * hour},
    {"CEST"_L1, 2 * hour},
    {"MET"_L1, 1 * hour},
    {"MEST"_L1, 2 * hour},
    {"MEZ"_L1, 1 * hour},
    {"MESZ"_L1, 2 * hour},
    {"EET"_L1, 2 * hour},
    {"EEST"_L1, 3 * hour},
    {"MSK"_L1, 3 * hour},
    {"JST"_L1, 9 * hour},
    {"KST"_L1, 9 * hour},
    {"AWST"_L1, 8 * hour},
    {"ACST"_L1, 9 * hour + 30 * minute},
    {"AEST"_L1, 10 * hour},
    {"AEDT"_L1, 11 * hour},
    {"NZST"_L1, 12 * hour},
    {"NZDT"_L1, 13 * hour},
}};

const QRegularExpression &isoForm()
{
    static const QRegularExpression form(u"^(\\d{4})(?:-(\\d{2})(?:-(\\d{2})"
                                         "(?:[Tt ](\\d{2}):(\\d{2})(?::(\\d{2})(?:[.,]\\d+)?)?(.*))?)?)?$"_s);
    return form;
}

/// "+05:30", "-0330", "+02"; seconds ahead of UTC.
std::optional<int> numericOffset(QStringView zone)
{
    static const QRegularExpression form(u"^([+-])(\\d{2}):?(\\d{2})?$"_s);
    const QRegularExpressionMatch match = form.match(zone.toString());
    if (!match.hasMatch() || match.capturedView(2).toInt() > 23 || match.capturedView(3).toInt() > 59)
        return std::nullopt;
    const int size = match.capturedView(2).toInt() * hour + match.capturedView(3).toInt() * minute;
    return match.capturedView(1) == u"-" ? -size : size;
}

std::optional<WrittenDate> readIso(const QString &text)
{
    const QRegularExpressionMatch match = isoForm().match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const auto part = [&match](int number, int otherwise) {
        return match.capturedLength(number) > 0 ? match.capturedView(number).toInt() : otherwise;
    };
    WrittenDate date{QDate(part(1, 0), part(2, 1), part(3, 1)), 0, std::nullopt};
    if (match.capturedLength(4) == 0)
        return date;
    if (part(4, 0) > 23 || part(5, 0) > 59 || part(6, 0) > 60)
        return std::nullopt;
    date.secondOfDay = part(4, 0) * hour + part(5, 0) * minute + std::min(part(6, 0), 59); // no day has a leap second
    const QString zone = match.captured(7).trimmed();
    date.offset = zone.isEmpty() || zone.compare("Z"_L1, Qt::CaseInsensitive) == 0 ? 0 : numericOffset(zone);
    return date.offset ? std::optional(date) : std::nullopt;
}

/// The text without what stands between brackets, which mail headers use for remarks.
QString withoutComments(const QString &text)
{
    QString kept;
    int depth = 0;
    for (const QChar c : text) {
        depth += c == u'(' ? 1 : 0;
        if (depth == 0)
            kept += c;
        depth -= c == u')' && depth > 0 ? 1 : 0;
    }
    return kept;
}

int zoneOffset(QStringView zone)
{
    for (const QLatin1String universal : {"GMT"_L1, "UTC"_L1, "UT"_L1})
        if (zone.startsWith(universal, Qt::CaseInsensitive) && zone.size() > universal.size())
            return zoneOffset(zone.mid(universal.size())); // "GMT+0200"
    const auto *const named = std::find_if(namedZones.begin(), namedZones.end(), [&](const NamedZone &known) {
        return zone.compare(known.name, Qt::CaseInsensitive) == 0;
    });
    return named != namedZones.end() ? named->offset : numericOffset(zone).value_or(0);
}

/// The word behind the time, or what it may be parted into by a blank: the zone, if it isn't the year of asctime.
std::optional<WrittenDate> readInternet(const QString &dateText)
{
    const QString text = withoutComments(dateText).simplified();
    const InternetDate fields = InternetDate::read(text);
    WrittenDate date{QDate(fields.year, fields.month, fields.day), 0, std::nullopt};
    if (fields.day == 0)
        return std::nullopt;
    const QStringList words = text.split(u' ');
    const auto time = std::find_if(words.begin(), words.end(), [](const QString &word) { return word.contains(u':'); });
    if (time == words.end())
        return date;
    date.secondOfDay = fields.hour * hour + fields.minute * minute + fields.second;
    date.offset = time + 1 == words.end() ? 0 : zoneOffset(*(time + 1));
    return date;
}

} // namespace

QDateTime StandardDates::NormaliseDate(const QString &text) const
{
    constexpr qsizetype longest = 200; // characters; what is longer is no date, and needn't be looked at
    const QString trimmed = text.size() <= longest ? text.simplified() : QString();
    std::optional<WrittenDate> written = readIso(trimmed);
    if (!written)
        written = readInternet(trimmed);
    if (!written || !written->day.isValid())
        return {};
    const QDateTime utc(written->day, QTime(0, 0), Qt::UTC);
    if (!written->offset)
        return {written->day, QTime(0, 0)};
    const QDateTime local = utc.addSecs(written->secondOfDay - *written->offset + m_local.LocalOffsetSeconds());
    const QDateTime shown(local.date(), local.time());
    return shown.isValid() ? shown : local; // an hour that daylight saving skips
}

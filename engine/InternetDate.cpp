// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/InternetDate.h"

#include <array>

namespace {

constexpr std::array<QStringView, 12> monthNames = {u"Jan", u"Feb", u"Mar", u"Apr", u"May", u"Jun",
                                                    u"Jul", u"Aug", u"Sep", u"Oct", u"Nov", u"Dec"};
constexpr int noNumber = -1;

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

/// A number of 1 to 4 digits.
int numberOf(QStringView text)
{
    if (text.isEmpty() || text.size() > 4)
        return noNumber;
    int value = 0;
    for (const QChar c : text) {
        if (!isDigit(c))
            return noNumber;
        value = 10 * value + (c.unicode() - u'0');
    }
    return value;
}

int monthOf(QStringView word)
{
    if (word.size() >= 3)
        for (std::size_t i = 0; i < monthNames.size(); ++i)
            if (word.first(3).compare(monthNames[i], Qt::CaseInsensitive) == 0)
                return static_cast<int>(i) + 1;
    return 0;
}

/// Takes the next word off the front of `text`. A "-" parts words, but at the front of one it is the sign of a zone.
QStringView takeWord(QStringView &text)
{
    qsizetype begin = 0;
    while (begin < text.size() && (text[begin] == u' ' || text[begin] == u'\t' || text[begin] == u','))
        ++begin;
    qsizetype end = begin;
    while (end < text.size() && text[end] != u' ' && text[end] != u'\t' && text[end] != u',' &&
           (text[end] != u'-' || end == begin))
        ++end;
    const QStringView word = text.mid(begin, end - begin);
    text = text.mid(end < text.size() ? end + 1 : end);
    return word;
}

/// "12:00" or "12:00:00".
bool readTime(QStringView word, InternetDate &date)
{
    const qsizetype first = word.indexOf(u':');
    const qsizetype second = word.indexOf(u':', first + 1);
    const int hours = numberOf(word.first(first));
    const int minutes = numberOf(second < 0 ? word.mid(first + 1) : word.mid(first + 1, second - first - 1));
    const int seconds = second < 0 ? 0 : numberOf(word.mid(second + 1));
    if (hours < 0 || hours > 23 || minutes < 0 || minutes > 59 || seconds < 0 || seconds > 60)
        return false;
    date.hour = static_cast<qint16>(hours);
    date.minute = static_cast<qint16>(minutes);
    date.second = static_cast<qint16>(qMin(seconds, 59)); // a leap second has no place in the day
    return true;
}

int fullYear(int year, qsizetype digits)
{
    if (digits > 3)
        return year;
    return year + (digits < 3 && year < 50 ? 2000 : 1900);
}

} // namespace

InternetDate InternetDate::read(QStringView text)
{
    InternetDate date;
    bool haveTime = false;
    const qsizetype comma = text.indexOf(u',');
    QStringView rest = comma < 0 ? text : text.mid(comma + 1);
    while (!rest.isEmpty() && (date.year == 0 || !haveTime)) {
        const QStringView word = takeWord(rest);
        if (word.contains(u':')) {
            if (haveTime || !readTime(word, date))
                return {};
            haveTime = true;
        } else if (const int number = numberOf(word); number != noNumber) {
            if (date.day == 0 && number >= 1 && number <= 31)
                date.day = static_cast<qint16>(number);
            else if (date.day != 0 && date.year == 0)
                date.year = static_cast<qint16>(fullYear(number, word.size()));
            else
                return {};
        } else if (date.month == 0) {
            date.month = static_cast<qint16>(monthOf(word)); // still 0 for a weekday
        }
    }
    const bool complete = date.day != 0 && date.month != 0 && date.year >= 100;
    return complete ? date : InternetDate();
}

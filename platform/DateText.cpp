// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/DateText.h"

#include "platform/Literals.h"
#include "platform/RunTimeError.h"

#include <QList>
#include <QLocale>
#include <QStringList>

#include <algorithm>
#include <array>

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

/// A number of the text, as it stands there.
struct Group
{
    int value = 0;
    qsizetype digits = 0;
};

/// The numbers of `text`, in whatever digits, and its words in capitals. A single letter is no word: some locales have
/// one between date and time.
struct Pieces
{
    explicit Pieces(const QString &text)
    {
        QString word;
        const auto endWord = [this, &word] {
            if (word.size() > 1)
                words.append(word);
            word.clear();
        };
        bool inNumber = false;
        for (const uint c : text.toUcs4()) {
            if (QChar::isLetter(c))
                word += QChar::fromUcs4(QChar::toUpper(c));
            else if (c != u'.') // "p.m."
                endWord();
            const int digit = QChar::digitValue(c);
            if (digit >= 0 && !inNumber)
                numbers.append(Group());
            inNumber = digit >= 0;
            if (inNumber && ++numbers.last().digits <= mostDigits)
                numbers.last().value = numbers.last().value * 10 + digit;
        }
        endWord();
    }

    static constexpr qsizetype mostDigits = 4;
    QList<Group> numbers;
    QStringList words;
};

/// Where day, month and year stand among three numbers.
struct DateOrder
{
    qsizetype day;
    qsizetype month;
    qsizetype year;
};

DateOrder orderOf(const QString &format)
{
    const std::array places = {format.indexOf(u'd'), format.indexOf(u'M'), format.indexOf(u'y')};
    const auto rank = [&places](qsizetype place) {
        return std::ranges::count_if(places, [place](qsizetype other) { return other < place; });
    };
    return {rank(places[0]), rank(places[1]), rank(places[2])};
}

/// `order` with the year at `year`. A year that stands first has the month behind it, everywhere.
DateOrder withYearAt(const DateOrder &order, qsizetype year)
{
    if (order.year == year)
        return order;
    const qsizetype first = year == 0 ? 1 : 0;
    const qsizetype second = year == 2 ? 1 : 2;
    const bool dayFirst = year != 0 && order.day < order.month;
    return dayFirst ? DateOrder{first, second, year} : DateOrder{second, first, year};
}

QDate dateBy(const DateOrder &order, const QList<Group> &numbers)
{
    constexpr int firstOfTwoDigits = 30;
    const Group &year = numbers[order.year];
    const int century = year.digits > 2 ? 0 : year.value < firstOfTwoDigits ? 2000 : 1900;
    return QDate(century + year.value, numbers[order.month].value, numbers[order.day].value);
}

QDate dateOf(const QList<Group> &numbers, const QLocale &locale)
{
    const DateOrder local = orderOf(shortDateFormat(locale));
    const auto isYear = [](const Group &number) { return number.digits > 2; };
    const qsizetype year = std::find_if(numbers.begin(), numbers.begin() + 3, isYear) - numbers.begin();
    for (const qsizetype place : {year < 3 ? year : local.year, qsizetype(0), qsizetype(2)}) {
        const DateOrder order = withYearAt(local, place);
        for (const DateOrder &tried : {order, DateOrder{order.month, order.day, order.year}}) {
            if (const QDate date = dateBy(tried, numbers); date.isValid())
                return date;
        }
    }
    return {};
}

/// The time behind the date; invalid when it is none.
QTime timeOf(const Pieces &pieces, const QLocale &locale)
{
    const auto number = [&pieces](qsizetype place) {
        return place < pieces.numbers.size() ? pieces.numbers[place].value : 0;
    };
    int hour = number(3);
    for (const QString &word : pieces.words) {
        const bool isMorning = word == u"AM"_s || word == locale.amText().toUpper();
        if (!isMorning && word != u"PM"_s && word != locale.pmText().toUpper())
            return {};
        if (hour <= 12)
            hour = hour % 12 + (isMorning ? 0 : 12);
    }
    return QTime(hour, number(4), number(5));
}

QDateTime inIsoForm(QString text)
{
    if (text.size() > 10 && text[10] == u' ')
        text[10] = u'T';
    const QDateTime when = QDateTime::fromString(text, Qt::ISODate);
    return when.isValid() ? when.toLocalTime() : when;
}

QDateTime parse(const QString &text)
{
    const QString trimmed = text.trimmed();
    if (trimmed.size() > 4 && trimmed[4] == u'-')
        if (QDateTime when = inIsoForm(trimmed); when.isValid())
            return when;
    const Pieces pieces(trimmed);
    const qsizetype count = pieces.numbers.size();
    const bool tooLong =
        std::ranges::any_of(pieces.numbers, [](const Group &number) { return number.digits > Pieces::mostDigits; });
    if ((count != 3 && count != 5 && count != 6) || tooLong)
        return {};
    const QLocale locale = dateLocale();
    const QDate date = dateOf(pieces.numbers, locale);
    const QTime time = timeOf(pieces, locale);
    if (!date.isValid() || !time.isValid())
        return {};
    const QDateTime when(date, time);
    // In the hour that is left out in spring there is no such time, but a moment that was meant.
    return when.isValid() ? when : date.startOfDay().addMSecs(time.msecsSinceStartOfDay());
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

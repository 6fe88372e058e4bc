// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Numbers.h"

#include "platform/RunTimeError.h"

#include <QLocale>

#include <cmath>
#include <limits>

namespace {

/// The end of the longest number that starts at `from`: sign, digits, fraction, exponent. `from` when there is none.
qsizetype numberEnd(QStringView text, qsizetype from)
{
    const auto digitAt = [&](qsizetype i) { return i < text.size() && text[i] >= u'0' && text[i] <= u'9'; };
    qsizetype i = from;
    if (i < text.size() && (text[i] == u'+' || text[i] == u'-'))
        ++i;
    const qsizetype digits = i;
    while (digitAt(i))
        ++i;
    bool any = i > digits;
    if (i < text.size() && (text[i] == u'.' || text[i] == u',')) {
        const qsizetype fraction = i + 1;
        qsizetype j = fraction;
        while (digitAt(j))
            ++j;
        if (j > fraction || any) {
            any = true;
            i = j;
        }
    }
    if (!any)
        return from;
    if (i < text.size() && (text[i] == u'e' || text[i] == u'E')) {
        qsizetype j = i + 1;
        if (j < text.size() && (text[j] == u'+' || text[j] == u'-'))
            ++j;
        if (digitAt(j)) {
            while (digitAt(j))
                ++j;
            i = j;
        }
    }
    return i;
}

double parse(QStringView number)
{
    QString plain = number.toString();
    plain.replace(u',', u'.');
    bool ok = false;
    const double value = QLocale::c().toDouble(plain, &ok);
    return ok ? value : (plain.startsWith(u'-') ? -HUGE_VAL : HUGE_VAL); // an exponent past every type
}

template <class Integer>
Integer roundTo(double value)
{
    const double rounded = std::nearbyint(value); // the default rounding mode takes halves to even
    if (!(rounded >= std::numeric_limits<Integer>::min() && rounded <= std::numeric_limits<Integer>::max()))
        throw RunTimeError::overflow();
    return static_cast<Integer>(rounded);
}

} // namespace

bool Numbers::isNumeric(const QString &text)
{
    const QStringView trimmed = QStringView(text).trimmed();
    return !trimmed.isEmpty() && numberEnd(trimmed, 0) == trimmed.size();
}

double Numbers::toDouble(const QString &text)
{
    if (!isNumeric(text))
        throw RunTimeError::typeMismatch();
    return parse(QStringView(text).trimmed());
}

qint16 Numbers::toInt16(const QString &text)
{
    return roundTo<qint16>(toDouble(text));
}

qint32 Numbers::toInt32(const QString &text)
{
    return roundTo<qint32>(toDouble(text));
}

qint16 Numbers::roundToInt16(double value)
{
    return roundTo<qint16>(value);
}

qint32 Numbers::roundToInt32(double value)
{
    return roundTo<qint32>(value);
}

double Numbers::numericPrefix(const QString &text)
{
    QString packed;
    packed.reserve(text.size());
    for (const QChar c : text)
        if (c != u' ' && c != u'\t' && c != u'\n' && c != u'\r')
            packed += c;
    packed.truncate(packed.indexOf(u',') < 0 ? packed.size() : packed.indexOf(u','));
    const qsizetype end = numberEnd(packed, 0);
    return end == 0 ? 0.0 : parse(QStringView(packed).first(end));
}

QString Numbers::singleText(double value)
{
    return QString::number(static_cast<double>(static_cast<float>(value)), 'g', 7);
}

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtGlobal>

/// The smaller of two numbers.
constexpr qint16 MinInt(const qint16 &a, const qint16 &b)
{
    return b < a ? b : a;
}

/// The larger of two numbers.
constexpr qint16 MaxInt(const qint16 &a, const qint16 &b)
{
    return a < b ? b : a;
}

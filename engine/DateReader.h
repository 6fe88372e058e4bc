// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QDateTime>
#include <QString>

/// Reads the dates of feed items. For display only.
class DateReader
{
public:
    DateReader() = default;
    DateReader(const DateReader &) = default;
    DateReader &operator=(const DateReader &) = default;
    virtual ~DateReader() = default;

    /// The local date that `text` tells; an invalid one where it tells none. An implementation may throw RunTimeError.
    virtual QDateTime NormaliseDate(const QString &text) const = 0;
};

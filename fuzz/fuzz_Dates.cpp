// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/StandardDates.h"
#include "platform/RunTimeError.h"

#include <QString>

#include <cstddef>
#include <cstdint>

/// Any text as a date: each of the readers gives a date of the representable years or a run-time error; the one by the
/// standards gives a date or none.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const Dates dates([] { return TimeZoneRecord{true, -60, 3, -60}; });
    for (const auto reader : {&Dates::NormaliseDate, &Dates::ParseIsoDate, &Dates::ParseInternetDate}) {
        try {
            const QDateTime date = (dates.*reader)(text);
            if (!date.isValid() || date.date().year() < 100 || date.date().year() > 9999)
                __builtin_trap();
        } catch (const RunTimeError &) {
        }
    }
    (void)StandardDates(dates).NormaliseDate(text);
    return 0;
}

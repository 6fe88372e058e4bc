// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

/// The text without the code units that an XML 1.0 document can't hold (production 2 of the recommendation): control
/// characters but tab and the two line ends, surrogates without their other half, U+FFFE and U+FFFF.
QString withoutWhatXmlCannotHold(const QString &text);

/// The blanks of XML and of HTML (production 3), which don't count at the ends of a text. A no-break space is none.
constexpr bool isXmlBlank(QChar c)
{
    return c == u' ' || c == u'\t' || c == u'\n' || c == u'\r';
}

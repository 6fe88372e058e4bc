// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/xml/XmlCharacters.h"

namespace {

/// True when the code unit at `index` belongs to a character that XML can hold.
bool isHeld(QStringView text, qsizetype index)
{
    const QChar c = text[index];
    if (c.isHighSurrogate())
        return index + 1 < text.size() && text[index + 1].isLowSurrogate();
    if (c.isLowSurrogate())
        return index > 0 && text[index - 1].isHighSurrogate();
    const char16_t unit = c.unicode();
    return unit >= 0x20 ? unit != 0xFFFE && unit != 0xFFFF : unit == u'\t' || unit == u'\n' || unit == u'\r';
}

} // namespace

QString withoutWhatXmlCannotHold(const QString &text)
{
    qsizetype index = 0;
    while (index < text.size() && isHeld(text, index))
        ++index;
    if (index == text.size())
        return text;
    QString held = text.first(index);
    held.reserve(text.size());
    for (; index < text.size(); ++index)
        if (isHeld(text, index))
            held += text[index];
    return held;
}

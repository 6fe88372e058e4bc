// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <libxml/tree.h>

#include <QtGlobal>

#include <cstring>

/// How many bytes a text takes at most once it is written as the value of an attribute, in whatever encoding.
inline qint64 writtenLength(const xmlChar *begin, const xmlChar *end)
{
    qint64 length = 0;
    for (; begin != end; ++begin) {
        if (*begin >= 0x80)
            length += *begin >= 0xC0 ? 10 : 0; // a reference such as "&#1114111;"; the bytes behind the first are in it
        else
            length += std::strchr("\"<>&\t\n\r", *begin) != nullptr ? 6 : 1;
    }
    return length;
}

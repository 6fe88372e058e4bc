// SPDX-License-Identifier: GPL-3.0-or-later

#include "reading/PageText.h"

#include "platform/AnsiText.h"

namespace {

QString asItIs(const QString &text)
{
    return text;
}

QByteArray utf8Bytes(const QString &page)
{
    return page.toUtf8();
}

} // namespace

constinit const PageText PageText::ansi{
    "<head><link rel=\"stylesheet\" href=\"style.css\" type=\"text/css\" /></head>"_L1, AnsiText::widenBytes,
    AnsiText::toBytes};

// The engine is told of the encoding by the head's first words (PaneScheme), which no feed can write.
constinit const PageText PageText::utf8{
    "<head><meta charset=\"utf-8\" /><link rel=\"stylesheet\" href=\"style.css\" type=\"text/css\" /></head>"_L1,
    asItIs, utf8Bytes};

// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/TrayShell.h"

QString TrayRecord::textOf(const QString &field)
{
    const qsizetype end = field.indexOf(QChar(u'\0'));
    return end < 0 ? field : field.left(end);
}

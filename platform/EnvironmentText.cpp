// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/EnvironmentText.h"

#include <QByteArray>

QString EnvironmentText::expand(const QString &text)
{
    QString expanded;
    qsizetype position = 0;
    for (;;) {
        const qsizetype start = text.indexOf(u'%', position);
        const qsizetype end = start < 0 ? -1 : text.indexOf(u'%', start + 1);
        if (end < 0)
            return expanded + text.mid(position);
        const QByteArray name = text.mid(start + 1, end - start - 1).toLocal8Bit();
        if (!name.isEmpty() && qEnvironmentVariableIsSet(name.constData())) {
            expanded += text.mid(position, start - position) + qEnvironmentVariable(name.constData());
            position = end + 1;
        } else {
            // The second sign may begin a name of its own.
            expanded += text.mid(position, end - position);
            position = end;
        }
    }
}

// SPDX-License-Identifier: GPL-3.0-or-later

#include "exchange/SearchEndpoints.h"

#include "platform/Files.h"
#include "platform/Literals.h"

#include <QHash>

namespace {

/// The lines "name=value" of the file; other lines (sections, comments) are passed over.
QHash<QString, QString> readValues(const QString &path)
{
    QHash<QString, QString> values;
    const QString text = QString::fromUtf8(Files::read(path).bytes);
    for (const QString &line : text.split(QLatin1Char('\n'))) {
        const qsizetype sign = line.indexOf(QLatin1Char('='));
        const QString name = line.left(sign).trimmed().toLower();
        if (sign > 0 && !name.startsWith(QLatin1Char('#')) && !name.startsWith(QLatin1Char(';')))
            values.insert(name, line.mid(sign + 1).trimmed());
    }
    return values;
}

} // namespace

SearchEndpoints SearchEndpoints::configured(const QString &iniPath)
{
    const QHash<QString, QString> values = readValues(iniPath);
    const auto endpoint = [&](const QString &name) {
        const QByteArray variable = "QUILLWIRE_SEARCH_" + name.toUpper().toLatin1();
        QString address = qEnvironmentVariable(variable.constData()).trimmed();
        if (address.isEmpty())
            address = values.value(name);
        if (address.isEmpty())
            address = u"http://"_s + name + u".example/"_s;
        return address.endsWith(QLatin1Char('/')) ? address : address + QLatin1Char('/');
    };
    return {endpoint(u"feedster"_s), endpoint(u"daypop"_s), endpoint(u"syndic8"_s), endpoint(u"newsisfree"_s),
            endpoint(u"blogstreet"_s)};
}

// SPDX-License-Identifier: GPL-3.0-or-later

#include "exchange/SearchEndpoints.h"

#include "platform/Files.h"
#include "platform/IniText.h"
#include "platform/Literals.h"

SearchEndpoints SearchEndpoints::configured(const QString &iniPath)
{
    const IniText values(QString::fromUtf8(Files::read(iniPath).bytes));
    const auto endpoint = [&](const QString &name) {
        const QByteArray variable = "QUILLWIRE_SEARCH_" + name.toUpper().toLatin1();
        QString address = qEnvironmentVariable(variable.constData()).trimmed();
        if (address.isEmpty())
            address = values.value(name).value_or(QString());
        if (address.isEmpty())
            address = u"http://"_s + name + u".example/"_s;
        return address.endsWith(QLatin1Char('/')) ? address : address + QLatin1Char('/');
    };
    return {endpoint(u"feedster"_s), endpoint(u"daypop"_s), endpoint(u"syndic8"_s), endpoint(u"newsisfree"_s),
            endpoint(u"blogstreet"_s)};
}

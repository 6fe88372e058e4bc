// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/BaseAddress.h"

#include "engine/feed/ElementText.h"
#include "engine/feed/FeedNamespaces.h"

#include <QUrl>

QString BaseAddress::resolvedAgainst(const QString &base, const QString &address)
{
    const QUrl relative(address);
    if (base.isEmpty() || address.isEmpty() || !relative.isValid() || !relative.isRelative())
        return address;
    const QUrl absolute = QUrl(base).resolved(relative);
    return absolute.isValid() ? absolute.toString(QUrl::FullyEncoded) : address;
}

QString BaseAddress::of(const xmlNode *element)
{
    QString base; // what was found so far, from the inside outwards
    for (; element != nullptr && element->type == XML_ELEMENT_NODE; element = element->parent) {
        const QString own = attributeOf(element, "base", NamespaceName::xml);
        if (own.isEmpty())
            continue;
        base = base.isEmpty() ? own : resolvedAgainst(own, base);
        if (!QUrl(base).isRelative())
            break;
    }
    return base;
}

QString BaseAddress::resolved(const xmlNode *element, const QString &address)
{
    return address.isEmpty() ? address : resolvedAgainst(of(element), address);
}

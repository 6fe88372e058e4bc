// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/AddressForms.h"

namespace {
constexpr QLatin1String http("http://");
constexpr QLatin1String https("https://");
constexpr QLatin1String feed("feed:");
} // namespace

constinit const AddressForms AddressForms::usual(false, updateByPrefix);
constinit const AddressForms AddressForms::secure(true, updateByEveryForm);

bool AddressForms::isWebAddress(const QString &text) const
{
    return text.startsWith(http) || (m_takesHttps && text.startsWith(https));
}

bool AddressForms::isFeedAddress(const QString &text) const
{
    return isWebAddress(text) || text.startsWith(feed);
}

QString AddressForms::withoutFeedScheme(const QString &text) const
{
    if (isWebAddress(text))
        return text;
    const QString rest = text.mid(feed.size());
    return rest.startsWith("//"_L1) ? rest.mid(2) : rest;
}

QString AddressForms::addressToFetch(const QString &text) const
{
    const QString address = withoutFeedScheme(text);
    if (isWebAddress(address))
        return address;
    return address.contains("//"_L1) ? QString() : QString(http + address);
}

/// "feed://" alone: a feed that was stored with another form is left to whoever stored it, as ever.
QString AddressForms::updateByPrefix(const AddressForms &, const QString &stored)
{
    constexpr QLatin1String prefix("feed://");
    return stored.startsWith(prefix) ? QString(http + stored.mid(prefix.size())) : stored;
}

QString AddressForms::updateByEveryForm(const AddressForms &forms, const QString &stored)
{
    const QString address = stored.startsWith(feed) ? forms.addressToFetch(stored) : QString();
    return address.isEmpty() ? stored : address;
}

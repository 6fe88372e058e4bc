// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/ItemAddresses.h"

#include "engine/feed/BaseAddress.h"
#include "engine/feed/HtmlText.h"

#include <QUrl>

namespace {

class WrittenAddresses final : public ItemAddresses
{
    QString address(const QString &written, const Base &) const override { return written; }
    QString markup(const QString &written, const Base &) const override { return written; }
};

class WholeAddresses final : public ItemAddresses
{
    QString address(const QString &written, const Base &base) const override
    {
        return written.isEmpty() ? written : whole(base(), written);
    }

    QString markup(const QString &written, const Base &base) const override
    {
        const QString its = base();
        return its.isEmpty() ? written : HtmlText::withAddresses(written, [&its](const QString &address) {
            return address.startsWith(u'#') ? address : whole(its, address);
        });
    }

    /// Of no use is a base that is relative itself.
    static QString whole(const QString &base, const QString &address)
    {
        return QUrl(base).isRelative() ? address : BaseAddress::resolvedAgainst(base, address);
    }
};

} // namespace

const ItemAddresses &writtenAddresses()
{
    static const WrittenAddresses addresses;
    return addresses;
}

const ItemAddresses &wholeAddresses()
{
    static const WholeAddresses addresses;
    return addresses;
}

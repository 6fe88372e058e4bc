// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/Literals.h"

#include <QString>

/// Which texts are addresses of feeds, and what is fetched for one. Schemes are compared with case.
///
/// There are two ways: `usual` knows "http://" and "feed:", `secure` takes "https://" wherever "http://" is taken.
class AddressForms
{
public:
    AddressForms(const AddressForms &) = delete;
    AddressForms &operator=(const AddressForms &) = delete;

    static const AddressForms usual;
    static const AddressForms secure;

    /// True for what begins as an address that is fetched as it stands.
    bool isWebAddress(const QString &text) const;

    /// True for that, and for "feed:" in front of anything.
    bool isFeedAddress(const QString &text) const;

    /// The text without "feed:" (any first 5 characters) and the slashes behind it; an address as it stands.
    QString withoutFeedScheme(const QString &text) const;

    /// The address that `text` asks to fetch: "feed:" in its forms is resolved to "http://". "" when its scheme is one
    /// that can't be fetched.
    QString addressToFetch(const QString &text) const;

    /// Likewise for the stored address of a feed that is updated. A text that is in none of the forms is fetched as it
    /// stands.
    QString addressToUpdate(const QString &stored) const { return m_addressToUpdate(*this, stored); }

private:
    using Update = QString (*)(const AddressForms &, const QString &);
    constexpr AddressForms(bool takesHttps, Update update) : m_takesHttps(takesHttps), m_addressToUpdate(update) {}
    static QString updateByPrefix(const AddressForms &, const QString &stored);
    static QString updateByEveryForm(const AddressForms &forms, const QString &stored);

    bool m_takesHttps;
    Update m_addressToUpdate;
};

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "core/FeedTree.h"
#include "platform/DateText.h"
#include "platform/Dictionary.h"

#include <QDateTime>
#include <QString>

#include <variant>

/// When a feed was last updated: the text that the catalogue file holds until the feed's first update of the run, a
/// date from then on. The text is read only when it is needed, so that a text that is no date fails there and not at
/// the start.
class UpdateDate
{
public:
    UpdateDate() = default;
    explicit UpdateDate(const QString &text) : m_value(text) {}
    explicit UpdateDate(const QDateTime &when) : m_value(when) {}

    /// The date. Throws RunTimeError::typeMismatch() for a text that is none.
    QDateTime date() const
    {
        return std::holds_alternative<QString>(m_value) ? DateText::fromText(std::get<QString>(m_value))
                                                        : std::get<QDateTime>(m_value);
    }

    /// True when date() doesn't throw.
    bool isDate() const
    {
        return std::holds_alternative<QDateTime>(m_value) || DateText::isDate(std::get<QString>(m_value));
    }

    /// The text that goes into the catalogue file.
    QString text() const
    {
        return std::holds_alternative<QString>(m_value) ? std::get<QString>(m_value)
                                                        : DateText::toText(std::get<QDateTime>(m_value));
    }

private:
    std::variant<QString, QDateTime> m_value;
};

/// The fast-changing values of the feeds, each table keyed by the feed's key as text. A deleted feed keeps its entries
/// to the end of the run.
struct FeedTables
{
    Dictionary<QString> updatettl;     ///< minutes between updates
    Dictionary<UpdateDate> updatedate; ///< time of the last finished update
    Dictionary<QString> updatecache;   ///< days that items are kept; negative: nothing is deleted
    Dictionary<QString> havecache;     ///< "0", or "1" once retention ran for the feed in this run
    Dictionary<QString> usernames;     ///< only feeds with credentials
    Dictionary<QString> passwords;     ///< enciphered, Base64; only feeds with credentials
    Dictionary<FeedNodePtr> nodeByKey; ///< every feed's node
};

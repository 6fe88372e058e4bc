// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/RunTimeError.h"

#include <QHash>
#include <QString>

#include <list>

/// A dictionary keyed by text that remembers the order in which its entries came. An entry that is removed and added
/// anew stands last. Look-up is constant in time; keys are compared with case.
template <class Value>
class Dictionary
{
public:
    Dictionary() = default;
    Dictionary(const Dictionary &) = delete;
    Dictionary &operator=(const Dictionary &) = delete;

    /// Adds an entry behind all others. Throws RunTimeError::keyInUse() when the key is there already.
    void Add(const QString &key, Value value)
    {
        if (m_byKey.contains(key))
            throw RunTimeError::keyInUse();
        m_entries.push_back({key, std::move(value)});
        m_byKey.insert(key, std::prev(m_entries.end()));
    }

    /// The value of `key`; a value made by default when there is no such entry (nothing is added then).
    Value Item(const QString &key) const
    {
        const auto found = m_byKey.find(key);
        return found == m_byKey.end() ? Value() : (*found)->value;
    }

    bool Exists(const QString &key) const { return m_byKey.contains(key); }

    /// Takes the entry out. Throws RunTimeError::elementNotFound() when there is none.
    void Remove(const QString &key)
    {
        const auto found = m_byKey.find(key);
        if (found == m_byKey.end())
            throw RunTimeError::elementNotFound();
        m_entries.erase(*found);
        m_byKey.erase(found);
    }

    /// Takes the entry out if there is one, and adds it anew as the last.
    void Replace(const QString &key, Value value)
    {
        if (Exists(key))
            Remove(key);
        Add(key, std::move(value));
    }

    /// The keys in the order of the entries.
    QStringList Keys() const
    {
        QStringList keys;
        keys.reserve(Count());
        for (const Entry &entry : m_entries)
            keys.append(entry.key);
        return keys;
    }

    qsizetype Count() const { return m_byKey.size(); }

private:
    struct Entry
    {
        QString key;
        Value value;
    };
    std::list<Entry> m_entries;
    QHash<QString, typename std::list<Entry>::iterator> m_byKey;
};

#pragma once

#include <QHash>
#include <QString>

#include <functional>

/// What the entries of the menus do, by key. A key without an action does nothing.
class Commands
{
public:
    void add(const QString &key, std::function<void()> action) { m_actions.insert(key, std::move(action)); }

    bool has(const QString &key) const { return m_actions.contains(key); }

    void run(const QString &key) const
    {
        const auto action = m_actions.value(key);
        if (action)
            action();
    }

private:
    QHash<QString, std::function<void()>> m_actions;
};

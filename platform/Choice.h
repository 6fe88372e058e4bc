// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

/// One of two ways of doing something. Which one holds is the user's affair and may change at any time, so that it is
/// asked for at each use. Nothing is owned: the ways and the switch outlive the choice.
template <class Way>
class Choice
{
public:
    /// Always `usual`.
    Choice(const Way &usual) : m_usual(&usual), m_other(&usual) {}
    Choice(const Way &&) = delete;

    /// `other` for as long as `isOther` holds.
    Choice(const Way &usual, const Way &other, const bool &isOther)
        : m_usual(&usual), m_other(&other), m_isOther(&isOther)
    {}

    const Way &operator*() const { return m_isOther != nullptr && *m_isOther ? *m_other : *m_usual; }
    const Way *operator->() const { return &**this; }

private:
    const Way *m_usual;
    const Way *m_other;
    const bool *m_isOther = nullptr;
};

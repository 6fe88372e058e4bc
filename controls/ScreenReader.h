// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QAccessible>
#include <QPointer>
#include <QWidget>

#include <functional>

/// What screen readers are told of widgets whose class alone tells them nothing.
namespace ScreenReader {

/// A number that is told, and set by whoever works the program from there. All functions must be set.
struct Value
{
    std::function<int()> current;
    std::function<int()> lowest;
    std::function<int()> highest;
    std::function<void(int)> set;
    int step = 1;
    QPointer<QWidget> namesake = {}; ///< the control whose name this one bears as well
};

/// Says what `widget` is. To be called from its constructor, before any reader asks.
void setRole(QWidget &widget, QAccessible::Role role);

/// Likewise, of one that stands for a number. That this has changed is told by tellValue().
void setRole(QWidget &widget, QAccessible::Role role, Value value);
void tellValue(QWidget &widget, int value);

/// Has `text` spoken without breaking off what is being said. It belongs to the window's `part` that shows such things.
void announce(QWidget &part, const QString &text);

} // namespace ScreenReader

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QDateTime>

#include <functional>

/// The clock of a room: the local time now. Tests set it.
using Clock = std::function<QDateTime()>;

/// A wait of so many milliseconds. Which events run meanwhile is said by what makes it. Tests replace it by one that
/// moves their clock.
using Wait = std::function<void(int milliseconds)>;

namespace Waiting {

/// The machine's clock.
Clock systemClock();

/// Runs the event loop of this thread for that long: the window stays alive, and event handlers may run nested in it.
Wait eventLoopWait();

/// Repaints what has changed of the windows. Nothing else happens: no user input, no timer, no network, no queued call,
/// and so nothing that could run an event loop of its own.
void repaintWindows();

/// Waits with repaintWindows() alone.
Wait repaintingWait();

} // namespace Waiting

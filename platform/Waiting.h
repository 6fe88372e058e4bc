// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QDateTime>

#include <functional>

/// The clock of a room: the local time now. Tests set it.
using Clock = std::function<QDateTime()>;

/// A wait of so many milliseconds in which the window stays alive: events run, and event handlers may run nested in it.
/// Tests replace it by one that moves their clock.
using Wait = std::function<void(int milliseconds)>;

namespace Waiting {

/// The machine's clock.
Clock systemClock();

/// Runs the event loop of this thread for that long.
Wait eventLoopWait();

} // namespace Waiting

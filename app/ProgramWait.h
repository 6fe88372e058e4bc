// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/Waiting.h"

#include <memory>

/// A wait that lets events run, and ends the process when the program ended in them: all is saved by then, and a loop
/// that waits for what no longer comes must not hold it. `leave` ends the process.
Wait programWait(Wait wait, const std::shared_ptr<const bool> &ended, std::function<void()> leave);

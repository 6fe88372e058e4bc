// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/ProgramWait.h"

#include <utility>

Wait programWait(Wait wait, const std::shared_ptr<const bool> &ended, std::function<void()> leave)
{
    return [wait = std::move(wait), ended, leave = std::move(leave)](int milliseconds) {
        wait(milliseconds);
        if (*ended)
            leave();
    };
}

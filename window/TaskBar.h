// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

class QWidget;

/// Asks the desktop to leave `window`, which isn't shown yet, out of its task bar and pager. The desktop forgets it
/// when the window is hidden. Does nothing where windows can't ask for that.
void leaveOutOfTaskBar(QWidget &window);

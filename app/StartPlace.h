// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QList>
#include <QRect>

struct AppSettings;

/// Where the main window comes up, in pixels: the stored place and size as far as they can be seen. A width or height
/// that shows nothing becomes 800 or 600; where no screen shows enough of the window to take hold of, it goes to the
/// corner of the first one. `screens` are the areas free for windows, the primary screen first; without any the stored
/// place is taken.
QRect startPlace(const AppSettings &settings, const QList<QRect> &screens);

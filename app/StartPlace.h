// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QList>
#include <QRect>

struct AppSettings;

/// Where the main window comes up, in pixels: the stored place and size, or, where none of the screens shows any of it,
/// that size at the corner of the first one. `screens` are the areas free for windows, the primary screen first;
/// without any the stored place is taken as it is.
QRect startPlace(const AppSettings &settings, const QList<QRect> &screens);

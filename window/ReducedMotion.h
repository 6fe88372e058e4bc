// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

class QWidget;

/// True when the user asked the desktop for less movement: by the style (as KDE does), or by the setting that desktops
/// hand out over the session bus (org.freedesktop.portal.Settings, the key enable-animations). False when nobody
/// answers within a tenth of a second.
bool desktopReducesMotion(const QWidget &widget);

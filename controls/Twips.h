// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QScreen>
#include <QWidget>

/// Twips: 1440 of them are an inch of the screen's logical dots.
namespace Twips {

/// Twips in a pixel of that screen, on each axis; 15 without a screen (96 dots an inch).
inline double perPixelX(const QScreen *screen)
{
    return screen && screen->logicalDotsPerInchX() > 0 ? 1440.0 / screen->logicalDotsPerInchX() : 15.0;
}

inline double perPixelY(const QScreen *screen)
{
    return screen && screen->logicalDotsPerInchY() > 0 ? 1440.0 / screen->logicalDotsPerInchY() : 15.0;
}

/// Likewise of the screen that a widget is on.
inline double perPixelX(const QWidget *widget)
{
    return perPixelX(widget->screen());
}

inline double perPixelY(const QWidget *widget)
{
    return perPixelY(widget->screen());
}

} // namespace Twips

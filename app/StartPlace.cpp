// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/StartPlace.h"

#include "core/AppSettings.h"

#include <algorithm>

namespace {

// Pixels. Less than that of a window can't be found and held with the mouse.
constexpr int leastSeen = 16;
constexpr QSize standardSize(800, 600);

bool isSeen(const QRect &part)
{
    return part.width() >= leastSeen && part.height() >= leastSeen;
}

} // namespace

QRect startPlace(const AppSettings &settings, const QList<QRect> &screens)
{
    QRect place(settings.windowX, settings.windowY, settings.windowWidth, settings.windowHeight);
    if (place.width() < leastSeen)
        place.setWidth(standardSize.width());
    if (place.height() < leastSeen)
        place.setHeight(standardSize.height());
    const bool reachable = screens.isEmpty() || std::any_of(screens.begin(), screens.end(), [&](const QRect &screen) {
                               return isSeen(screen.intersected(place));
                           });
    if (!reachable)
        place.moveTopLeft(screens.first().topLeft());
    return place;
}

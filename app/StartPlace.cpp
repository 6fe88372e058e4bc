// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/StartPlace.h"

#include "core/AppSettings.h"

#include <algorithm>

QRect startPlace(const AppSettings &settings, const QList<QRect> &screens)
{
    QRect place(settings.windowX, settings.windowY, settings.windowWidth, settings.windowHeight);
    const bool reachable = screens.isEmpty() || std::any_of(screens.begin(), screens.end(), [&](const QRect &screen) {
                               return screen.intersects(place);
                           });
    if (!reachable)
        place.moveTopLeft(screens.first().topLeft());
    return place;
}

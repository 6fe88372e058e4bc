// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "core/DataDirectory.h"
#include "window/Desktop.h"
#include "window/Dialogs.h"

class QApplication;

/// The real desktop around the program, as window and dialogs are handed it.
namespace DesktopSurroundings {

/// Names the application, and gives it the look and the French texts that the library has of its own.
void dress(QApplication &application);

/// Twips per pixel of the primary screen.
ScreenScale screenScale();

/// The areas of the screens that are free for windows, the primary screen first.
QList<QRect> screens();

Desktop desktop(const DataDirectory &directory, Messages &messages);

/// `wait` lets the program's events run; it outlives the dialogs.
Dialogs::Outside dialogs(const DataDirectory &directory, Wait wait);

} // namespace DesktopSurroundings

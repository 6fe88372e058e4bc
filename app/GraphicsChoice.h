// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QByteArray>
#include <QString>

/// Who draws the pages: a graphics device, or the processor. Where no device helps, the graphics library draws in
/// software behind a driver of some 30 MB and a process of its own; going without both shows the same page with less
/// memory, sooner.
namespace GraphicsChoice {

/// `asked` is what the user set in QUILLWIRE_GRAPHICS: "software" or "hardware"; any other text leaves it to the
/// devices. `deviceFolder` is where the system lists those that can draw.
bool isSoftware(const QByteArray &asked, const QString &deviceFolder);

/// To be called before the application object is made, which loads the drivers. Sets, in the environment, what the
/// toolkit and the browser engine are told; what the user set there stays. They read it as late as with the first page,
/// so that programs started from here inherit it.
void prepare();

} // namespace GraphicsChoice

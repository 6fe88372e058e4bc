// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "core/SettingsFile.h"

#include <QByteArray>
#include <QRect>
#include <QString>

/// The main window as the start and the end of the program see it: each verb is a step of theirs.
class ProgramWindow
{
public:
    ProgramWindow() = default;
    ProgramWindow(const ProgramWindow &) = delete;
    ProgramWindow &operator=(const ProgramWindow &) = delete;
    virtual ~ProgramWindow() = default;

    /// Gives the window its place and size on the screen, in pixels.
    virtual void place(const QRect &pixels) = 0;

    /// Builds menus, bars, bands and panes from the settings, and connects them. The window stays hidden.
    virtual void build() = 0;

    virtual void showStartPage() = 0;
    virtual void showTrayIcon(bool shown) = 0;

    /// Opens a text of the command line, that of a second start too. Throws RunTimeError for a text that stands for
    /// nothing.
    virtual void openCommandLine(const QString &text) = 0;

    /// Shows the window for the first time.
    virtual void present() = 0;

    /// Hides the window when an icon leads back to it, otherwise minimises it as other windows are.
    virtual void hideToTray() = 0;

    /// Restores the window when it is iconic, shows it, and brings it to the front. A desktop that lets no window do
    /// so of its own accord has given a token for it to who asks.
    virtual void comeForward(const QByteArray &activationToken) = 0;

    /// Takes the command line of a second start: a window that isn't seen comes forward first.
    virtual void takeHandOver(const QString &text, const QByteArray &activationToken) = 0;

    /// Says something in the status bar.
    virtual void tell(const QString &text) = 0;

    virtual void dismissPopup() = 0;

    /// The layout of the bands as text; the bands are gone then.
    virtual QString takeBandLayout() = 0;

    /// Place and size of window and columns, for the settings file.
    virtual WindowGeometry geometryInTwips() const = 0;
};

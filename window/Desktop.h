// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "core/AppSettings.h"

#include <QString>

#include <functional>
#include <memory>

class Messages;
class QWidget;
class TrayShell;

/// What the main window needs of the desktop around it. All functions must be set; nothing is owned.
struct Desktop
{
    Messages &messages;
    ScreenScale scale = {};
    std::function<std::unique_ptr<TrayShell>()> makeTrayShell = {};

    /// False when the address was refused.
    std::function<bool(const QString &url)> openInSystemBrowser = {};

    /// Asks for one line of text; "" when the user cancels.
    std::function<QString(QWidget *parent, const QString &prompt, const QString &title)> inputBox = {};

    /// Asks for a file to open; "" when the user cancels.
    std::function<QString(QWidget *parent, const QString &title, const QString &filter)> askFeedFile = {};
};

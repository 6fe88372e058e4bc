// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/Files.h"

#include <QString>

#include <functional>

class Messages;
class QWidget;

/// The part of the browser pane that needs the browser engine. It lives in a module of its own ("quillwire_web"), which
/// BrowserPane loads with the first page that it shows: the engine's libraries alone take some 30 MB, which a program
/// in the tray doesn't hold, and time, which the first window doesn't wait for.
class WebPane
{
public:
    /// What the pane tells, and asks. All must be set; none is called once the object is gone.
    struct Events
    {
        std::function<void(const QString &text)> statusText;
        std::function<void(int progress, int progressMax)> progress;
        std::function<void(int command, bool enable)> commandState;
        std::function<void()> downloadBegin;
        std::function<void()> documentComplete;
        std::function<void(const QString &url)> feedLinkAccepted;
        std::function<void(const QString &url)> systemLinkActivated;
        std::function<void()> extensionsAsked;

        /// Where a download goes; "" refuses it. It may show a dialog, and the pane may be gone when it returns.
        std::function<QString(const QString &proposed)> askDownloadPath;
    };

    /// The data directory, as far as the pane needs it.
    struct Folder
    {
        QString path;
        Files::Content (*read)(const QString &path); ///< Files::read; the module links no room of the program
    };

    WebPane() = default;
    WebPane(const WebPane &) = delete;
    WebPane &operator=(const WebPane &) = delete;
    virtual ~WebPane() = default;

    /// The widget, a child of the parent that was given; owned by this object.
    virtual QWidget *widget() = 0;

    virtual void navigate(const QString &target) = 0;
    virtual void goBack() = 0;
    virtual void goForward() = 0;
    virtual void refresh() = 0;
    virtual void stop() = 0;
    virtual QString location() const = 0;
};

/// What the module exports under the name "quillwireMakeWebPane". `messages` and `parent` outlive the object, which the
/// caller owns.
using WebPaneMaker = WebPane *(*)(const WebPane::Folder &folder, Messages &messages, QWidget *parent,
                                  const WebPane::Events &events);

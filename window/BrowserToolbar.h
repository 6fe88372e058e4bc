// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "core/AppSettings.h"

#include <QObject>
#include <QString>

#include <functional>

class BrowserPane;
class ReadingPane;
class cPopupMenu;
class cToolbar;
struct CurrentFeed;

/// The browser's toolbar `tlbBrowser`: its ten buttons, what they do, and the menu of attachments under the last one.
class BrowserToolbar : public QObject
{
    Q_OBJECT

public:
    /// What it works with. Nothing is owned.
    struct Parts
    {
        cToolbar &tlbBrowser;
        cPopupMenu &mnuAttachment;
        BrowserPane &browser;
        ReadingPane &reading;
        const CurrentFeed &current;
        std::function<void(const QString &url)> openInSystemBrowser;
    };

    explicit BrowserToolbar(Parts parts, QObject *parent = nullptr);

    /// Gives `tlbBrowser` its look and its buttons.
    static void build(cToolbar &tlbBrowser, const AppSettings &settings);

private:
    void handleButton(int index);
    void showComments(const QString &url);
    void handleDropDown(int index);
    void handleAttachment(int index);
    void handleCommandState(int command, bool enable);

    Parts m_parts;
};

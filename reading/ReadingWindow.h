// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

/// What the reading floor asks of the window around it. Buttons are those of `tlbBrowser`, by key.
class ReadingWindow
{
public:
    ReadingWindow() = default;
    ReadingWindow(const ReadingWindow &) = delete;
    ReadingWindow &operator=(const ReadingWindow &) = delete;
    virtual ~ReadingWindow() = default;

    virtual void enableBrowserButton(const QString &key, bool enabled) = 0;

    /// Empties the menu of attachments and adds one entry with that caption and key (the item's index as text).
    virtual void setAttachmentEntry(const QString &caption, const QString &key) = 0;

    /// True while an update of a feed runs.
    virtual bool updateRunning() const = 0;

    /// Shows the mail dialog with `text` as its body.
    virtual void showMailDialog(const QString &text) = 0;

    /// Shows the menu of the item list at the cursor, with the entries that mark as read and as unread enabled as told.
    virtual void showItemMenu(bool canMarkRead, bool canMarkUnread) = 0;

    /// Shows the menu of the item list's columns at the cursor.
    virtual void showColumnMenu() = 0;
};

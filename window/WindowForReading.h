// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "reading/ReadingWindow.h"

#include <QPoint>

#include <functional>

class ItemListView;
class MainMenus;
class cToolbar;

/// The main window as the reading floor sees it.
class WindowForReading final : public ReadingWindow
{
public:
    /// What it speaks to. Nothing is owned.
    struct Parts
    {
        cToolbar &tlbBrowser;
        ItemListView &lvwItems;
        MainMenus &menus;
        std::function<bool()> updateRunning;
        std::function<void(const QString &text)> showMailDialog;
    };

    explicit WindowForReading(Parts parts) : m_parts(std::move(parts)) {}

    void enableBrowserButton(const QString &key, bool enabled) override;
    void setAttachmentEntry(const QString &caption, const QString &key) override;
    bool updateRunning() const override { return m_parts.updateRunning(); }
    void showMailDialog(const QString &text) override { m_parts.showMailDialog(text); }
    void showItemMenu(bool canMarkRead, bool canMarkUnread) override;
    void showColumnMenu() override;

private:
    QPoint menuPlace() const;

    Parts m_parts;
};

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "controls/cPopupMenu.h"
#include "core/AppSettings.h"

/// The menu bar and the four other pop-up menus of the main window.
class MainMenus
{
public:
    /// Builds all five with the look of the settings. `form` owns them, but the tree's menu, which belongs to `tree`.
    MainMenus(QWidget *form, QWidget *tree, const AppSettings &settings);

    cPopupMenu m_cMenu;
    cPopupMenu mnuPopUpListView;
    cPopupMenu mnuPopUpListViewHeader;
    cPopupMenu mnuTreeView;
    cPopupMenu mnuAttachment; ///< filled for each item

    /// Checks exactly one of the two entries of m_cMenu.
    void checkOneOf(const QString &checked, const QString &unchecked);
};

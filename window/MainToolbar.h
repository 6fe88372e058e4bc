// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "core/AppSettings.h"

class cToolbar;

/// The buttons of the main toolbar `cToolbar1`, by index.
namespace MainToolbar {

constexpr int Actualiser = 0;
constexpr int Supprimer = 1;
constexpr int Proprietes = 2;
constexpr int Ajouter = 3;

/// Gives `cToolbar1` its look and its four buttons, all disabled.
void build(cToolbar &cToolbar1, const AppSettings &settings);

} // namespace MainToolbar

/// Pictures, captions and drawing of a toolbar as the settings have them.
namespace ToolbarLook {
void applySize(cToolbar &toolbar, bool small);
void applyStyle(cToolbar &toolbar, bool officeStyle);
} // namespace ToolbarLook

// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/MainToolbar.h"

#include "controls/ImageList.h"
#include "controls/cToolbar.h"
#include "platform/Literals.h"

void ToolbarLook::applySize(cToolbar &toolbar, bool small)
{
    toolbar.setCaptionsVisible(!small);
    toolbar.setImageList(small ? &ImageLists::vbalImageList4() : &ImageLists::vbalImageList2());
}

void ToolbarLook::applyStyle(cToolbar &toolbar, bool officeStyle)
{
    toolbar.setDrawStyle(officeStyle ? DrawStyle::OfficeXp : DrawStyle::Standard);
}

void MainToolbar::build(cToolbar &cToolbar1, const AppSettings &settings)
{
    ToolbarLook::applySize(cToolbar1, settings.smallToolbars);
    ToolbarLook::applyStyle(cToolbar1, settings.officeStyle);
    const auto add = [&](const QString &text, const QString &key) {
        const int index = cToolbar1.buttonCount();
        cToolbar1.AddButton(text, index, text, cToolbar::AutoSize, key);
        cToolbar1.setButtonEnabled(index, false);
    };
    add(u"Actualiser"_s, u"actualiser"_s);
    add(u"Supprimer"_s, u"supprimer"_s);
    add(u"Propriétés"_s, u"proprietes"_s);
    add(u"Ajouter"_s, u"ajouter"_s);
}

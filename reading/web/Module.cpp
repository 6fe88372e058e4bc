// SPDX-License-Identifier: GPL-3.0-or-later

#include "reading/web/EngineView.h"

/// The one symbol of the module. The scheme is registered here, before the engine comes to life with the first profile.
extern "C" Q_DECL_EXPORT WebPane *quillwireMakeWebPane(const WebPane::Folder &folder, Messages &messages,
                                                       QWidget *parent, const WebPane::Events &events)
{
    static const bool registered = [] {
        PaneScheme::registerScheme();
        return true;
    }();
    Q_UNUSED(registered)
    return new EngineView(folder, messages, parent, events);
}

// SPDX-License-Identifier: GPL-3.0-or-later

#include "reading/web/EngineView.h"

static constexpr const char *readerVariable = "QTWEBENGINE_ENABLE_LINUX_ACCESSIBILITY";

/// The one symbol of the module. The scheme is registered here, before the engine comes to life with the first profile,
/// and pages are opened to screen readers, which the engine leaves out here unless it is asked: it does so only while
/// one is there.
extern "C" Q_DECL_EXPORT WebPane *quillwireMakeWebPane(const WebPane::Folder &folder, Messages &messages,
                                                       QWidget *parent, const WebPane::Events &events)
{
    static const bool registered = [] {
        PaneScheme::registerScheme();
        if (!qEnvironmentVariableIsSet(readerVariable))
            qputenv(readerVariable, "1");
        return true;
    }();
    Q_UNUSED(registered)
    return new EngineView(folder, messages, parent, events);
}

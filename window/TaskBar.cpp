// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/TaskBar.h"

#include <QGuiApplication>
#include <QWidget>

#include <xcb/xcb.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace {

xcb_atom_t atomOf(xcb_connection_t *connection, std::string_view name)
{
    const auto asked = xcb_intern_atom(connection, 0, static_cast<uint16_t>(name.size()), name.data());
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
        xcb_intern_atom_reply(connection, asked, nullptr), &std::free);
    return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

} // namespace

void leaveOutOfTaskBar(QWidget &window)
{
    const auto *desktop = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    xcb_connection_t *connection = desktop ? desktop->connection() : nullptr;
    if (!connection) // another desktop, or none as in the tests
        return;
    const std::array states = {atomOf(connection, "_NET_WM_STATE_SKIP_TASKBAR"),
                               atomOf(connection, "_NET_WM_STATE_SKIP_PAGER")};
    // Qt adds what it wants of its own when the window is shown.
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(window.winId()),
                        atomOf(connection, "_NET_WM_STATE"), XCB_ATOM_ATOM, 32, states.size(), states.data());
}

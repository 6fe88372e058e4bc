// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/Messages.h"

#include <QPointer>
#include <QWidget>

/// Message boxes of the desktop, with French buttons ("OK", "Oui", "Non"), texts shown as plain text, selectable.
class MessageBoxes final : public Messages
{
public:
    /// The window that the boxes belong to; none until it is set.
    void setParentWindow(QWidget *window);

    Answer show(const Message &message) override;

private:
    QPointer<QWidget> m_parent;
};

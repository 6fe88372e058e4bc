// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "controls/DialogBase.h"
#include "core/Extensions.h"

#include <functional>
#include <vector>

class Messages;
class QCheckBox;

/// Turns the extensions on and off. What is ticked holds at once. For one showing: construct, exec().
class frmExtensions final : public DialogBase
{
    Q_OBJECT

public:
    /// What the dialog reads and changes.
    struct Port
    {
        const Extensions &extensions;

        /// Writes and turns on or off. May throw RunTimeError, and has changed nothing then.
        std::function<void(const ExtensionKey &key, bool on)> set;
    };

    frmExtensions(QWidget *owner, Messages &messages, Port port);

private:
    void handleClicked(const ExtensionKey &key, bool on);
    void handleAllClicked();
    void showState();

    Messages &m_messages;
    Port m_port;
    QCheckBox *m_chkTout;
    std::vector<QCheckBox *> m_boxes; ///< in the order of extensionKeys
};

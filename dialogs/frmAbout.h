// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "controls/DialogBase.h"

#include <QString>

#include <functional>

/// The box "À propos": fixed texts, and three links that go to the system's browser. For one showing: construct,
/// exec().
class frmAbout final : public DialogBase
{
    Q_OBJECT

public:
    /// Hands an address to the system's browser.
    using OpenInSystemBrowser = std::function<void(const QString &url)>;

    frmAbout(QWidget *owner, const OpenInSystemBrowser &openInSystemBrowser);
};

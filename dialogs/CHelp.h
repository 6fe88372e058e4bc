// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "dialogs/HelpSystem.h"

#include <QString>

#include <optional>

/// Opens the help file. Made for one call; holds no state.
///
/// All operations take the help file's path and a window type. With a window type that isn't empty, the help system
/// gets both trimmed, with ">" between them; otherwise the path as given.
class CHelp
{
public:
    explicit CHelp(HelpSystem &system);

    /// The table of contents, or, with a `ContextID` (0 too), the topic of that number.
    void Show(const QString &NewFile, const QString &WindowPane, std::optional<qint32> ContextID = std::nullopt);

    void ShowIndex(const QString &NewFile, const QString &WindowPane);

    /// The search, open on the word "TEST".
    void ShowSearch(const QString &NewFile, const QString &WindowPane);

private:
    HelpSystem &m_system;
};

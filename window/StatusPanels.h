// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/Literals.h"

#include <QString>

/// The keys of the panels of the status bar `stabPrinc`.
namespace StatusPanels {

inline const QString state = u"state"_s;
inline const QString progressBar = u"progressbar"_s;
inline const QString glue = u"glue"_s;

} // namespace StatusPanels

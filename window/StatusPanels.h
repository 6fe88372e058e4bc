#pragma once

#include <QString>

/// The keys of the panels of the status bar `stabPrinc`.
namespace StatusPanels {

inline const QString state = QStringLiteral("state");
inline const QString progressBar = QStringLiteral("progressbar");
inline const QString glue = QStringLiteral("glue");

} // namespace StatusPanels

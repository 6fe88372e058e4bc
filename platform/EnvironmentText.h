// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

namespace EnvironmentText {

/// `text` with every %NAME% replaced by the environment variable of that name; one that isn't set stays as it stands.
QString expand(const QString &text);

} // namespace EnvironmentText

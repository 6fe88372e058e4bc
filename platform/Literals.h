// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

/// Literals of text: u"..."_s is a QString made at compile time, "..."_L1 a QLatin1String. Every source that writes one
/// includes this header, so that one line follows where the library moves them.
using namespace Qt::Literals::StringLiterals;

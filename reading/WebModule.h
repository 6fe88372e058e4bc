// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "reading/WebPane.h"

#include <QString>

/// Finds and loads the module of the browser engine.
namespace WebModule {

/// Looks in the folder that QUILLWIRE_MODULES names, beside the program, and in the library folder of an installation;
/// the module stays loaded to the end. Null when none loads; `error` then says why.
WebPaneMaker load(QString &error);

} // namespace WebModule

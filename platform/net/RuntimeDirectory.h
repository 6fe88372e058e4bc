// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

/// The directory, private to the user, where the instance lock and the hand-over's socket lie: what
/// QUILLWIRE_RUNTIME_DIR names, else the system's runtime directory of the user, else a directory of the user's own in
/// the one for temporary files. It is made when it is missing. "" when there is none that belongs to the user alone.
QString runtimeDirectory();

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

class RegistryStore;

/// The entry that starts the program with the session, a value of the current user's Run section named after the base
/// name of the program's executable.
///
/// 2 when the entry exists, 0 when it doesn't (or holds "?", which counts as absent). Writes nothing.
int isRunAtStartup(RegistryStore &store, const QString &baseName);

/// Any `state` but 0 makes the entry: `programDirectory`, a separator unless it ends in one, and `baseName`, with
/// neither quotes nor file extension. 0 removes it. A store that refuses is ignored without a word.
void setRunAtStartup(int state, RegistryStore &store, const QString &programDirectory, const QString &baseName);

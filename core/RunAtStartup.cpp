// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/RunAtStartup.h"

#include "platform/AutostartRegistryStore.h"
#include "platform/Literals.h"
#include "platform/RegistryStore.h"
#include "platform/RunTimeError.h"
#include "support/cRegistry.h"

namespace {

const QString Absent = u"?"_s;

/// Runs one step; its error is passed over on purpose, and the next step goes on.
template <class Step>
void withoutError(Step step)
{
    try {
        step();
    } catch (const RunTimeError &) {
    }
}

void goToRunEntry(cRegistry &registry, const QString &baseName)
{
    registry.ClassKey = RegistryRoot::CurrentUser;
    registry.SectionKey = AutostartRegistryStore::runSection();
    registry.ValueKey = baseName;
    registry.ValueType = RegistryType::Text;
}

} // namespace

int isRunAtStartup(RegistryStore &store, const QString &baseName)
{
    cRegistry registry(store);
    goToRunEntry(registry, baseName);
    registry.Default = Absent;
    return registry.Value().toString() == Absent ? 0 : 2;
}

void setRunAtStartup(int state, RegistryStore &store, const QString &programDirectory, const QString &baseName)
{
    const bool ended = programDirectory.endsWith(u'/') || programDirectory.endsWith(u'\\');
    // No quotes around a directory with blanks: the entry is found again by comparing this very text.
    const QString path = programDirectory + (ended ? u""_s : u"/"_s) + baseName;
    cRegistry registry(store);
    goToRunEntry(registry, baseName);
    if (state != 0)
        withoutError([&] { registry.setValue(path); });
    else if (registry.KeyExists())
        withoutError([&] { registry.DeleteValue(); });
}

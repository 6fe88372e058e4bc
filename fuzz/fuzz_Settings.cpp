// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/SettingsFile.h"
#include "platform/Files.h"
#include "platform/Literals.h"
#include "platform/Messages.h"
#include "platform/RunTimeError.h"

#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>

namespace {

class SilentMessages final : public Messages
{
public:
    Answer show(const Message &) override { return Answer::Ok; }
};

} // namespace

/// Any bytes as params.xml: they load or end in the failure box; what loads and can be saved loads again.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    static const QTemporaryDir folder(u"/dev/shm/quillwire-XXXXXX"_s);
    const QString path = folder.filePath(u"params.xml"_s);
    Files::write(path, QByteArray(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)));
    SilentMessages messages;
    const SettingsFile file(path, {}, {}, messages);
    AppSettings settings;
    if (!file.loadSettings(settings))
        return 0;
    try {
        WindowGeometry geometry;
        geometry.width = geometry.height = 6000.5;
        file.saveSettings(settings, geometry, [] { __builtin_trap(); });
    } catch (const RunTimeError &) {
        return 0;
    }
    AppSettings again;
    if (!file.loadSettings(again) || again.readDelay != settings.readDelay || again.soundPath != settings.soundPath ||
        again.startMode != settings.startMode)
        __builtin_trap();
    return 0;
}

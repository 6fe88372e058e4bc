// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/GraphicsChoice.h"

#include "platform/Literals.h"

#include <QDir>

static void setUnlessSet(const char *name, const char *value)
{
    if (!qEnvironmentVariableIsSet(name))
        qputenv(name, value);
}

bool GraphicsChoice::isSoftware(const QByteArray &asked, const QString &deviceFolder)
{
    if (asked == "software" || asked == "hardware")
        return asked == "software";
    return QDir(deviceFolder).entryList({u"renderD*"_s}, QDir::System | QDir::Files | QDir::Readable).isEmpty();
}

void GraphicsChoice::prepare()
{
    if (!isSoftware(qgetenv("QUILLWIRE_GRAPHICS"), u"/dev/dri"_s))
        return;
    setUnlessSet("QT_QUICK_BACKEND", "software");
    setUnlessSet("QTWEBENGINE_CHROMIUM_FLAGS", "--disable-gpu");
    setUnlessSet("QT_XCB_GL_INTEGRATION", "none");
    setUnlessSet("QT_WAYLAND_DISABLE_HW_INTEGRATION", "1");
}

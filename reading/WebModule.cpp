// SPDX-License-Identifier: GPL-3.0-or-later

#include "reading/WebModule.h"

#include "platform/Build.h"
#include "platform/Literals.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibrary>
#include <QOpenGLContext>

QT_BEGIN_NAMESPACE
/// Exported by Qt for its own modules; there is no public way to share contexts once the application object exists.
Q_GUI_EXPORT void qt_gl_set_global_share_context(QOpenGLContext *context);
QT_END_NAMESPACE

namespace {

/// The engine wants a graphics context that all others share. Qt::AA_ShareOpenGLContexts would make it at the start of
/// the program, and with it load a graphics driver (30 MB where it draws in software) that a program in the tray has no
/// use for.
void shareGraphicsContext()
{
    if (QOpenGLContext::globalShareContext() != nullptr)
        return;
    auto *context = new QOpenGLContext(QCoreApplication::instance());
    context->create();
    qt_gl_set_global_share_context(context);
}

} // namespace

WebPaneMaker WebModule::load(QString &error)
{
    const QDir program(QCoreApplication::applicationDirPath());
    const QString named = qEnvironmentVariable("QUILLWIRE_MODULES");
    QStringList folders = {program.path(), QDir::cleanPath(program.filePath(Build::moduleFolder.toString()))};
    if (!named.isEmpty())
        folders.prepend(named);
    for (const QString &folder : std::as_const(folders)) {
        const QString path = QDir(folder).filePath(u"quillwire_web.so"_s);
        if (!QFile::exists(path))
            continue;
        shareGraphicsContext();
        QLibrary module(path);
        if (auto *maker = module.resolve("quillwireMakeWebPane"))
            return reinterpret_cast<WebPaneMaker>(maker);
        error = module.errorString();
    }
    if (error.isEmpty())
        error = u"quillwire_web.so"_s;
    return nullptr;
}

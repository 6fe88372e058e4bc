#include "reading/WebModule.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibrary>

WebPaneMaker WebModule::load(QString &error)
{
    const QDir program(QCoreApplication::applicationDirPath());
    const QString named = qEnvironmentVariable("QUILLWIRE_MODULES");
    QStringList folders = {program.path(), QDir::cleanPath(program.filePath(QStringLiteral("../lib/quillwire")))};
    if (!named.isEmpty())
        folders.prepend(named);
    for (const QString &folder : std::as_const(folders)) {
        const QString path = QDir(folder).filePath(QStringLiteral("quillwire_web.so"));
        if (!QFile::exists(path))
            continue;
        QLibrary module(path);
        if (auto *maker = module.resolve("quillwireMakeWebPane"))
            return reinterpret_cast<WebPaneMaker>(maker);
        error = module.errorString();
    }
    if (error.isEmpty())
        error = QStringLiteral("quillwire_web.so");
    return nullptr;
}

// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/DesktopSurroundings.h"

#include "app/SignalWatch.h"
#include "controls/DialogStyle.h"
#include "controls/FileDialogs.h"
#include "controls/FrenchTexts.h"
#include "controls/SystemBrowser.h"
#include "controls/Twips.h"
#include "core/RunAtStartup.h"
#include "dialogs/HelpViewer.h"
#include "platform/AutostartRegistryStore.h"
#include "platform/Build.h"
#include "platform/FileRegistryStore.h"
#include "platform/Literals.h"
#include "platform/net/Downloader.h"
#include "window/DesktopTrayShell.h"
#include "window/InputBox.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QIcon>
#include <QScreen>

namespace {

/// Where the compiled help may lie: in a portable folder, beside the program, in an installation.
QStringList helpFiles(const DataDirectory &directory)
{
    const QDir program(QCoreApplication::applicationDirPath());
    const QString name = u"Quillwire.qch"_s;
    return {directory.file(name), program.filePath(name),
            QDir::cleanPath(program.filePath(Build::dataFolder % u'/' % name))};
}

/// The operations behind the option to start with the desktop.
frmOptions::RunAtStartup runAtStartup()
{
    struct Stores
    {
        FileRegistryStore file;
        AutostartRegistryStore autostart{file};
    };
    const auto stores = std::make_shared<Stores>();
    const QString directory = QCoreApplication::applicationDirPath();
    const QString baseName = QFileInfo(QCoreApplication::applicationFilePath()).completeBaseName();
    return {[=] { return isRunAtStartup(stores->autostart, baseName); },
            [=](int state) { setRunAtStartup(state, stores->autostart, directory, baseName); }};
}

} // namespace

void DesktopSurroundings::dress(QApplication &application)
{
    QCoreApplication::setApplicationName(u"quillwire"_s);
    QCoreApplication::setApplicationVersion(Build::version.toString());
    QGuiApplication::setDesktopFileName(u"quillwire"_s);
    QGuiApplication::setWindowIcon(QIcon(u":/icons/quillwire.svg"_s));
    QGuiApplication::setQuitOnLastWindowClosed(false);
    FrenchTexts::install(application);
    QApplication::setStyle(new DialogStyle); // owned by the application
}

ScreenScale DesktopSurroundings::screenScale()
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    return {Twips::perPixelX(screen), Twips::perPixelY(screen)};
}

QList<QRect> DesktopSurroundings::screens()
{
    QList<QRect> areas;
    for (const QScreen *screen : QGuiApplication::screens()) // the primary screen is the first
        areas.append(screen->availableGeometry());
    return areas;
}

Desktop DesktopSurroundings::desktop(const DataDirectory &directory, Messages &messages)
{
    Desktop desktop{messages, screenScale()};
    desktop.makeTrayShell = [] { return std::make_unique<DesktopTrayShell>(); };
    desktop.openInSystemBrowser = [browser = SystemBrowser(directory.path())](const QString &url) {
        return browser.openInSystemBrowser(url);
    };
    desktop.inputBox = inputBox;
    desktop.askFeedFile = FileDialogs::askOpenFile;
    return desktop;
}

Dialogs::Outside DesktopSurroundings::dialogs(const DataDirectory &directory, Wait wait)
{
    const auto makeHelp = [candidates = helpFiles(directory), browser = SystemBrowser(directory.path())] {
        return std::make_unique<HelpViewer>(candidates, HelpViewer::defaultCacheFolder(),
                                            [browser](const QString &url) { browser.openInSystemBrowser(url); });
    };
    return {[] { return std::make_unique<Downloader>(); }, makeHelp, runAtStartup(), std::move(wait),
            SignalWatch::isEndAsked};
}

#include "app/SignalWatch.h"
#include "controls/MessageBoxes.h"
#include "controls/SystemBrowser.h"
#include "controls/Twips.h"
#include "core/DataDirectory.h"
#include "core/RunAtStartup.h"
#include "core/SettingsFile.h"
#include "dialogs/FileDialogs.h"
#include "dialogs/HelpViewer.h"
#include "platform/AutostartRegistryStore.h"
#include "platform/FileRegistryStore.h"
#include "platform/Files.h"
#include "platform/Waiting.h"
#include "platform/net/Downloader.h"
#include "platform/net/HandOver.h"
#include "platform/net/InstanceLock.h"
#include "platform/net/NetworkState.h"
#include "window/DesktopTrayShell.h"
#include "window/ErrorTrap.h"
#include "window/InputBox.h"
#include "window/frmPrinc.h"

#include <QDir>
#include <QFileInfo>
#include <QLibraryInfo>
#include <QScreen>
#include <QTranslator>

#include <cstdlib>

namespace {

/// The command line as the window takes it: the arguments with blanks between them.
QString commandLine()
{
    return QCoreApplication::arguments().mid(1).join(u' ');
}

void nameApplication()
{
    QCoreApplication::setApplicationName(QStringLiteral("quillwire"));
    QCoreApplication::setApplicationVersion(QStringLiteral("3.1.0"));
    QGuiApplication::setDesktopFileName(QStringLiteral("quillwire"));
    QGuiApplication::setWindowIcon(QIcon(QStringLiteral(":/icons/quillwire.svg")));
    QGuiApplication::setQuitOnLastWindowClosed(false);
}

ScreenScale screenScale()
{
    const QScreen *screen = QGuiApplication::primaryScreen();
    return {Twips::perPixelX(screen), Twips::perPixelY(screen)};
}

/// Where the compiled help may lie: in a portable folder, beside the program, in an installation.
QStringList helpFiles(const DataDirectory &directory)
{
    const QDir program(QCoreApplication::applicationDirPath());
    const QString name = QStringLiteral("Quillwire.qch");
    return {directory.file(name), program.filePath(name),
            QDir::cleanPath(program.filePath(QStringLiteral("../share/quillwire/") + name))};
}

/// The operations behind the option to start with the session.
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

/// Puts the window where the settings have it; where no screen is, it comes up on the first one.
void moveForm(frmPrinc &form, const AppSettings &settings)
{
    QRect place(settings.windowX, settings.windowY, settings.windowWidth, settings.windowHeight);
    const QScreen *primary = QGuiApplication::primaryScreen();
    bool reachable = !primary;
    for (const QScreen *screen : QGuiApplication::screens())
        reachable = reachable || screen->availableGeometry().intersects(place);
    if (!reachable)
        place.moveTopLeft(primary->availableGeometry().topLeft());
    form.move(place.topLeft());
    form.resize(place.size());
}

frmPrinc::Surroundings surroundings(const DataDirectory &directory, AppSettings &settings, const SettingsFile &file,
                                    MessageBoxes &messages, InstanceLock &lock, frmPrinc *&form)
{
    frmPrinc::Surroundings s{directory, settings, file, screenScale(), messages};
    s.clock = Waiting::systemClock();
    s.runtimeDirectory = runtimeDirectory();
    s.wait = [wait = Waiting::eventLoopWait(), &form](int milliseconds) {
        wait(milliseconds);
        // All is saved by then; a loop that waits for what no longer comes must not hold the process.
        if (form && form->isUnloaded())
            std::_Exit(0);
    };
    s.isConnected = isConnected;
    s.makeDownloader = [] { return std::make_unique<Downloader>(); };
    s.makeTrayShell = [] { return std::make_unique<DesktopTrayShell>(); };
    s.openInSystemBrowser = [browser = SystemBrowser(directory.path())](const QString &url) {
        return browser.openInSystemBrowser(url);
    };
    s.makeHelp = [candidates = helpFiles(directory), open = s.openInSystemBrowser] {
        return std::make_unique<HelpViewer>(candidates, HelpViewer::defaultCacheFolder(),
                                            [open](const QString &url) { open(url); });
    };
    s.inputBox = [&form](const QString &prompt, const QString &title) { return inputBox(form, prompt, title); };
    s.askFeedFile = [&form](const QString &title, const QString &filter) {
        return FileDialogs::askOpenFile(form, title, filter);
    };
    s.runAtStartup = runAtStartup();
    s.releaseInstance = [&lock] { lock.release(); };
    return s;
}

/// Loads the form, shows it unless it is to start hidden, and runs the loop. A run-time error of the load is shown
/// while the form still exists, as those of the loop are.
int runForm(ErrorTrap &application, frmPrinc &form, const AppSettings &settings)
{
    application.setFreeze([&form] { form.abandon(); });
    QObject::connect(&form, &frmPrinc::unloaded, &application, &QCoreApplication::quit, Qt::QueuedConnection);
    QObject::connect(&application, &QGuiApplication::commitDataRequest, &form, [&form] { form.unload(); });
    SignalWatch signalWatch;
    QObject::connect(&signalWatch, &SignalWatch::endAsked, &form, &frmPrinc::postClose);
    int code = 0;
    try {
        moveForm(form, settings);
        form.load(commandLine());
        if (!form.isUnloaded()) {
            if (settings.startMode == QStringLiteral("Minimisé"))
                form.hideToTray();
            else
                form.show();
            code = QApplication::exec();
        }
    } catch (const RunTimeError &error) {
        application.fail(error);
    }
    application.setFreeze({});
    return code;
}

int runFirstInstance(ErrorTrap &application, InstanceLock &lock)
{
    MessageBoxes messages;
    application.setMessages(&messages);
    try {
        const DataDirectory directory = DataDirectory::ofProgram(QCoreApplication::applicationDirPath());
        const SettingsFile settingsFile(directory.file(QStringLiteral("params.xml")),
                                        Files::read(QStringLiteral(":/data/params.xml")).bytes, screenScale(),
                                        messages);
        AppSettings settings;
        if (!settingsFile.loadSettings(settings)) {
            lock.release();
            return 1;
        }
        frmPrinc *created = nullptr;
        frmPrinc form(surroundings(directory, settings, settingsFile, messages, lock, created));
        created = &form;
        messages.setParentWindow(&form);
        return runForm(application, form, settings);
    } catch (const RunTimeError &error) {
        application.fail(error);
        return 1;
    }
}

} // namespace

int main(int argc, char *argv[])
{
    // Unless it is told so, the C library looks at the file of the time zone anew with each date that it converts.
    if (!qEnvironmentVariableIsSet("TZ"))
        qputenv("TZ", ":/etc/localtime");
    ErrorTrap application(argc, argv);
    nameApplication();
    QTranslator french;
    if (french.load(QStringLiteral("qtbase_fr"), QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(&french);

    InstanceLock lock;
    if (!lock.isFirstInstance()) {
        handOver(commandLine());
        return 0;
    }
    return runFirstInstance(application, lock);
}

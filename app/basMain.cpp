// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/DesktopSurroundings.h"
#include "app/GraphicsChoice.h"
#include "app/Program.h"
#include "app/ProgramWait.h"
#include "app/SignalWatch.h"
#include "controls/MessageBoxes.h"
#include "platform/Files.h"
#include "platform/Literals.h"
#include "platform/net/Downloader.h"
#include "platform/net/HandOver.h"
#include "platform/net/InstanceLock.h"
#include "platform/net/NetworkState.h"
#include "window/ErrorTrap.h"
#include "window/frmPrinc.h"

#include <cstdlib>

namespace {

/// The command line as the window takes it: the arguments with blanks between them.
QString commandLine()
{
    return QCoreApplication::arguments().mid(1).join(u' ');
}

/// Brings the window up and runs the loop. A run-time error of the start is shown while the window still exists, as
/// those of the loop are.
int run(ErrorTrap &application, Program &program, frmPrinc &form)
{
    application.setFreeze([&program] { program.abandon(); });
    QObject::connect(&form, &frmPrinc::closeAsked, &program, &Program::end);
    // exit() and not quit(), which does nothing while a box of the start runs a loop of its own.
    QObject::connect(
        &program, &Program::ended, &application, [] { QCoreApplication::exit(0); }, Qt::QueuedConnection);
    QObject::connect(&application, &QGuiApplication::commitDataRequest, &program, [&application, &program] {
        application.endFailure();
        program.end();
    });
    SignalWatch signalWatch;
    QObject::connect(&signalWatch, &SignalWatch::endAsked, &form, [&application, &form] {
        application.endFailure();
        form.postClose();
    });
    int code = 0;
    try {
        program.start(form, DesktopSurroundings::screens(), commandLine());
        if (!program.isEnded())
            code = QApplication::exec();
    } catch (const RunTimeError &error) {
        application.fail(error);
    }
    application.setFreeze({});
    return code;
}

int runFirstInstance(ErrorTrap &application, MessageBoxes &messages, InstanceLock &lock)
{
    try {
        const DataDirectory directory = DataDirectory::ofProgram(QCoreApplication::applicationDirPath());
        const auto ended = std::make_shared<bool>(false);
        const Wait wait = programWait(Waiting::eventLoopWait(), ended, [] { std::_Exit(0); });
        Program program({directory, Files::read(u":/data/params.xml"_s).bytes, DesktopSurroundings::screenScale(),
                         messages, Waiting::systemClock(), wait, isConnected,
                         [] { return std::make_unique<Downloader>(); }, runtimeDirectory(),
                         [&lock] { lock.release(); }});
        QObject::connect(&program, &Program::ended, &program, [ended] { *ended = true; });
        if (!program.loadSettings())
            return 1;
        frmPrinc form(program.longLived(), DesktopSurroundings::desktop(directory, messages),
                      DesktopSurroundings::dialogs(directory, wait));
        messages.setParentWindow(&form);
        return run(application, program, form);
    } catch (const RunTimeError &error) {
        application.fail(error);
        return 1;
    }
}

/// The token by which the desktop lets the window of this start come to the front; to be asked for before the
/// application is made, which takes one of its places away.
QByteArray activationToken()
{
    const QByteArray token = qgetenv("XDG_ACTIVATION_TOKEN");
    return token.isEmpty() ? qgetenv("DESKTOP_STARTUP_ID") : token;
}

} // namespace

int main(int argc, char *argv[])
{
    // Unless it is told so, the C library looks at the file of the time zone anew with each date that it converts.
    if (!qEnvironmentVariableIsSet("TZ"))
        qputenv("TZ", ":/etc/localtime");
    const QByteArray token = activationToken();
    GraphicsChoice::prepare();
    ErrorTrap application(argc, argv);
    DesktopSurroundings::dress(application);

    InstanceLock lock;
    if (!lock.isFirstInstance()) {
        handOver(commandLine(), HandOverProtocol::TimeoutMs, runtimeDirectory(), token);
        return 0;
    }
    MessageBoxes messages;
    application.setMessages(&messages);
    return runFirstInstance(application, messages, lock);
}

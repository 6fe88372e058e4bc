// SPDX-License-Identifier: GPL-3.0-or-later

// A day of the program in a minute: its window, page, scheduler and downloader are the real ones, and only the clock is
// set forward. The data directory holds the catalogue, whose feeds name their servers; the one with the key 1 is on
// show. After the start and after each hour a line is written and one is waited for, so that who started it can look at
// its processes: day_of_updates DATA_DIRECTORY

#include "app/DesktopSurroundings.h"
#include "app/GraphicsChoice.h"
#include "app/Program.h"
#include "platform/Files.h"
#include "platform/Literals.h"
#include "platform/net/Downloader.h"
#include "tests/fixtures/FakeMessages.h"
#include "window/FeedTreeView.h"
#include "window/frmPrinc.h"
#include "window/frmUpdate.h"

#include <QApplication>
#include <QTemporaryDir>

#include <iostream>
#include <string>

namespace {

constexpr int hours = 24;
constexpr int minutesAnHour = 60;
constexpr int settleMs = 8000; // the page and its engine are up by then
constexpr int longestWaitMs = 5;

void report(int updates)
{
    std::cout << updates << std::endl;
    std::string line;
    std::getline(std::cin, line);
}

/// The popup says what it has to say without its five seconds a message.
void seeThePopupOff()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        auto *popup = qobject_cast<frmUpdate *>(widget);
        while (popup != nullptr && popup->popupRunning)
            popup->handleHideTick();
    }
}

void showFeed(const LongLived &program, frmPrinc &window)
{
    const FeedNodePtr node = program.tree.find(u"1"_s);
    program.treeState.select(node);
    Q_EMIT window.findChild<FeedTreeView *>(u"tvwFavoris"_s)->nodeClicked(node);
}

} // namespace

int main(int argc, char *argv[])
{
    GraphicsChoice::prepare();
    QApplication application(argc, argv);
    const DataDirectory directory(QCoreApplication::arguments().value(1));
    const QTemporaryDir runtime;
    FakeMessages messages;
    messages.onShow = [](const Message &box) { qFatal("%s", qPrintable(box.text)); };
    QDateTime now = QDateTime::currentDateTime();
    const Wait longWait = Waiting::eventLoopWait();
    const Wait wait = [&](int milliseconds) { longWait(qMin(milliseconds, longestWaitMs)); };

    Program program({directory, Files::read(u":/data/params.xml"_s).bytes, DesktopSurroundings::screenScale(), messages,
                     [&now] { return now; }, wait, [] { return true; }, [] { return std::make_unique<Downloader>(); },
                     runtime.path(), [] {}});
    if (!program.loadSettings())
        return 1;
    frmPrinc window(program.longLived(), DesktopSurroundings::desktop(directory, messages),
                    DesktopSurroundings::dialogs(directory, wait));
    program.start(window, DesktopSurroundings::screens(), {});
    longWait(settleMs);
    showFeed(program.longLived(), window);
    longWait(settleMs);

    int updates = 0;
    UpdateScheduler &scheduler = program.longLived().scheduler;
    QObject::connect(&scheduler, &UpdateScheduler::newItemsFound, &application, [&updates] { ++updates; });
    report(updates);
    for (int hour = 0; hour < hours; ++hour) {
        for (int minute = 0; minute < minutesAnHour; ++minute) {
            now = now.addSecs(minutesAnHour);
            scheduler.handleUpdateTick();
            seeThePopupOff();
        }
        report(updates);
    }
    program.end();
    return 0;
}

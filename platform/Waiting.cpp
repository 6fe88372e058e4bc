// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Waiting.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QEventLoop>
#include <QThread>
#include <QTimer>

namespace {

constexpr unsigned long repaintEveryMs = 10;

} // namespace

Clock Waiting::systemClock()
{
    return [] { return QDateTime::currentDateTime(); };
}

Wait Waiting::eventLoopWait()
{
    return [](int milliseconds) {
        QEventLoop loop;
        QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
        loop.exec();
    };
}

void Waiting::repaintWindows()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::UpdateRequest);
}

Wait Waiting::repaintingWait()
{
    return [](int milliseconds) {
        QElapsedTimer timer;
        timer.start();
        while (!timer.hasExpired(milliseconds)) {
            repaintWindows();
            QThread::msleep(repaintEveryMs);
        }
    };
}

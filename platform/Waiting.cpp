// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Waiting.h"

#include <QEventLoop>
#include <QTimer>

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

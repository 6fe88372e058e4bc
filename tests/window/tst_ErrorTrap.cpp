// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Literals.h"
#include "tests/fixtures/FakeMessages.h"
#include "window/ErrorTrap.h"

#include <QTest>

class tst_ErrorTrap : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anErrorOutOfAnEventHandlerIsShownOnceAndEndsTheProcess()
    {
        auto *trap = qobject_cast<ErrorTrap *>(QCoreApplication::instance());
        FakeMessages messages;
        QStringList steps;
        messages.onShow = [&](const Message &box) {
            steps += u"shown: %1, icon %2"_s.arg(box.text).arg(int(box.icon));
            trap->fail(RunTimeError::objectNotSet()); // what comes while the box is open isn't shown
        };
        trap->setMessages(&messages);
        trap->setFreeze([&] { steps += u"frozen"_s; });
        trap->setEnd([&](int code) { steps += u"end %1"_s.arg(code); });
        QMetaObject::invokeMethod(
            this, [] { throw RunTimeError::overflow(); }, Qt::QueuedConnection);
        QCoreApplication::processEvents();
        QCOMPARE(steps.join(u", "_s), u"frozen, shown: %1, icon %2, end 1"_s.arg(RunTimeError::overflow().message())
                                          .arg(int(Message::Icon::Critical)));
    }
};

int main(int argc, char **argv)
{
    ErrorTrap trap(argc, argv);
    tst_ErrorTrap test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_ErrorTrap.moc"

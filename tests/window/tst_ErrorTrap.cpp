// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Literals.h"
#include "tests/fixtures/FakeMessages.h"
#include "window/ErrorTrap.h"

#include <QTest>

class tst_ErrorTrap : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anErrorOutOfAnEventHandlerIsShownAndEndsTheProcess()
    {
        auto *trap = qobject_cast<ErrorTrap *>(QCoreApplication::instance());
        FakeMessages messages;
        QStringList steps;
        messages.onShow = [&](const Message &) { steps.append(u"shown"_s); };
        trap->setMessages(&messages);
        trap->setFreeze([&] { steps.append(u"frozen"_s); });
        trap->setEnd([&](int code) { steps.append(u"end %1"_s.arg(code)); });

        QMetaObject::invokeMethod(
            this, [] { throw RunTimeError::overflow(); }, Qt::QueuedConnection);
        QCoreApplication::processEvents();

        QCOMPARE(steps, QStringList({u"frozen"_s, u"shown"_s, u"end 1"_s}));
        QCOMPARE(messages.shown.size(), std::size_t(1));
        QCOMPARE(messages.shown.front().text, RunTimeError::overflow().message());
        QCOMPARE(messages.shown.front().icon, Message::Icon::Critical);
    }

    void anErrorWhileTheBoxIsOpenIsNotShownAgain()
    {
        auto *trap = qobject_cast<ErrorTrap *>(QCoreApplication::instance());
        FakeMessages messages;
        int ends = 0;
        messages.onShow = [&](const Message &) { trap->fail(RunTimeError::objectNotSet()); };
        trap->setMessages(&messages);
        trap->setFreeze({});
        trap->setEnd([&](int) { ++ends; });
        trap->fail(RunTimeError::typeMismatch());
        QCOMPARE(messages.shown.size(), std::size_t(1));
        QCOMPARE(ends, 1);
    }
};

int main(int argc, char **argv)
{
    ErrorTrap trap(argc, argv);
    tst_ErrorTrap test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_ErrorTrap.moc"

// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/ErrorTrap.h"

#include "platform/Messages.h"

#include <cstdlib>
#include <exception>

ErrorTrap::ErrorTrap(int &argc, char **argv) : QApplication(argc, argv), m_end([](int code) { std::_Exit(code); }) {}

void ErrorTrap::fail(const RunTimeError &error)
{
    // An error while the box of the first is open changes nothing: the process is ending.
    if (std::exchange(m_failing, true))
        return;
    if (m_freeze)
        m_freeze();
    if (m_messages)
        m_messages->show({error.message(), QString(), Message::Icon::Critical, Message::Buttons::Ok});
    m_end(1);
    m_failing = false;
}

void ErrorTrap::endFailure()
{
    if (m_failing)
        m_end(1);
}

bool ErrorTrap::notify(QObject *receiver, QEvent *event)
{
    try {
        return QApplication::notify(receiver, event);
    } catch (const RunTimeError &error) {
        fail(error);
    }
    return true;
}

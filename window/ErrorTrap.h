// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/RunTimeError.h"

#include <QApplication>

#include <functional>

class Messages;

/// The application object, and the one place where a run-time error is caught: it shows the system's message and ends
/// the process at once, with nothing further saved.
class ErrorTrap : public QApplication
{
    Q_OBJECT

public:
    ErrorTrap(int &argc, char **argv);

    /// What shows the message. Nothing is owned.
    void setMessages(Messages *messages) { m_messages = messages; }

    /// Called before the message is shown: stops what could still write while the box is open.
    void setFreeze(std::function<void()> freeze) { m_freeze = std::move(freeze); }

    /// Replaces the end of the process, for tests.
    void setEnd(std::function<void(int code)> end) { m_end = std::move(end); }

    /// Shows the error and ends the process with code 1.
    void fail(const RunTimeError &error);

    /// Ends the process now if the message of an error stands, as its OK does. Otherwise nothing happens.
    void endFailure();

    bool notify(QObject *receiver, QEvent *event) override;

private:
    Messages *m_messages = nullptr;
    std::function<void()> m_freeze;
    std::function<void(int)> m_end;
    bool m_failing = false;
};

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <memory>

/// Turns the signals that ask a process to end (SIGTERM, SIGINT, SIGHUP) into one of Qt's. There is one at most in a
/// process.
class SignalWatch : public QObject
{
    Q_OBJECT

public:
    explicit SignalWatch(QObject *parent = nullptr);
    ~SignalWatch() override;

    /// Whether one of these signals has come, also when the event loop is held.
    static bool isEndAsked();

Q_SIGNALS:
    /// Raised from the event loop.
    void endAsked();

private:
    void handleActivated();

    std::unique_ptr<QSocketNotifier> m_notifier;
};

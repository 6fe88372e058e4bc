// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "window/TrayShell.h"

#include <QElapsedTimer>
#include <QSystemTrayIcon>

/// The notification area of the desktop. Two left clicks in the time of a double click count as one, since many
/// desktops report single activations only.
class DesktopTrayShell final : public QObject, public TrayShell
{
    Q_OBJECT

public:
    DesktopTrayShell();

    void setNotify(Notify notify) override;
    void setMenu(QMenu *menu) override;
    void add(const TrayRecord &record) override;
    void modify(const TrayRecord &record) override;
    void remove(const TrayRecord &record) override;
    void setVersion(const TrayRecord &record) override;
    bool isAvailable() const override;

private:
    void handleActivation(QSystemTrayIcon::ActivationReason reason);
    void notify(int value);

    QSystemTrayIcon m_icon;
    Notify m_notify;
    QElapsedTimer m_sinceClick;
};

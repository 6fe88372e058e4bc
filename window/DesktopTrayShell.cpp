// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/DesktopTrayShell.h"

#include <QApplication>
#include <QMenu>

namespace {

// Values of notifications.
constexpr int leftButtonUp = 514;
constexpr int leftDoubleClick = 515;
constexpr int rightButtonDown = 516;
constexpr int rightButtonUp = 517;
constexpr int balloonClicked = 1029;

QSystemTrayIcon::MessageIcon messageIcon(qint32 flags)
{
    switch (flags & 3) {
    case 1:
        return QSystemTrayIcon::Information;
    case 2:
        return QSystemTrayIcon::Warning;
    case 3:
        return QSystemTrayIcon::Critical;
    default:
        return QSystemTrayIcon::NoIcon;
    }
}

} // namespace

DesktopTrayShell::DesktopTrayShell()
{
    connect(&m_icon, &QSystemTrayIcon::activated, this, &DesktopTrayShell::handleActivation);
    connect(&m_icon, &QSystemTrayIcon::messageClicked, this, [this] { notify(balloonClicked); });
}

void DesktopTrayShell::setNotify(Notify notify)
{
    m_notify = std::move(notify);
}

void DesktopTrayShell::setMenu(QMenu *menu)
{
    m_icon.setContextMenu(menu);
}

void DesktopTrayShell::add(const TrayRecord &record)
{
    modify(record);
    m_icon.show();
}

void DesktopTrayShell::modify(const TrayRecord &record)
{
    if (record.uFlags & TrayRecord::Icon)
        m_icon.setIcon(record.picture);
    if (record.uFlags & TrayRecord::Tip)
        m_icon.setToolTip(TrayRecord::textOf(record.szTip));
    if (record.uFlags & TrayRecord::Info)
        m_icon.showMessage(TrayRecord::textOf(record.szInfoTitle), TrayRecord::textOf(record.szInfo),
                           messageIcon(record.dwInfoFlags), record.uTimeout);
}

void DesktopTrayShell::remove(const TrayRecord &)
{
    m_icon.hide();
    m_icon.setContextMenu(nullptr);
}

void DesktopTrayShell::setVersion(const TrayRecord &) {} // this shell has one way of telling its events only

bool DesktopTrayShell::isAvailable() const
{
    return QSystemTrayIcon::isSystemTrayAvailable();
}

void DesktopTrayShell::handleActivation(QSystemTrayIcon::ActivationReason reason)
{
    switch (reason) {
    case QSystemTrayIcon::Trigger:
        if (m_sinceClick.isValid() && m_sinceClick.elapsed() < QApplication::doubleClickInterval()) {
            m_sinceClick.invalidate();
            notify(leftDoubleClick);
            return;
        }
        m_sinceClick.start();
        notify(leftButtonUp);
        return;
    case QSystemTrayIcon::DoubleClick:
        m_sinceClick.invalidate();
        notify(leftDoubleClick);
        return;
    case QSystemTrayIcon::Context:
        notify(rightButtonDown);
        notify(rightButtonUp);
        return;
    default:
        return;
    }
}

void DesktopTrayShell::notify(int value)
{
    if (m_notify)
        m_notify(value);
}

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>

#include <functional>
#include <memory>

class QIcon;
class TrayShell;
class frmSysTray;

/// The program's icon in the notification area, with its menu "Ouvrir" and "Quitter". It stands there as long as this
/// object lives.
class TrayIcon : public QObject
{
    Q_OBJECT

public:
    /// `makeShell` gives the notification area of the desktop.
    TrayIcon(const std::function<std::unique_ptr<TrayShell>()> &makeShell, const QIcon &icon,
             QObject *parent = nullptr);
    ~TrayIcon() override;

    /// True when the desktop has a notification area at present, so that a hidden window can be reached through the
    /// icon.
    bool isAvailable() const;

Q_SIGNALS:
    void doubleClicked();
    void openAsked();
    void quitAsked();

private:
    void handleMenu(const QString &key);

    std::unique_ptr<frmSysTray> m_frmSysTray;
};

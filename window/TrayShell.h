// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QIcon>
#include <QObject>
#include <QString>

#include <functional>

class QMenu;

/// The record of an icon in the notification area, as the shell takes it. Its texts are fields of fixed size: a zero
/// character ends what counts.
struct TrayRecord
{
    /// Values of uFlags: which fields an addition or a change is about.
    enum Flag { Message = 1, Icon = 2, Tip = 4, Info = 16 };

    qint32 cbSize = 0;
    quintptr hWnd = 0;
    qint32 uID = 0;
    qint32 uFlags = 0;
    qint32 uCallbackMessage = 0;
    qint32 hIcon = 0;
    QString szTip;
    QString szInfo;
    QString szInfoTitle;
    qint32 uTimeout = 0;
    qint32 uVersion = 0;
    qint32 dwInfoFlags = 0;
    QIcon picture; ///< what hIcon stands for

    /// The text of a field up to its first zero character.
    static QString textOf(const QString &field);
};

/// What the tray icon needs of the desktop.
class TrayShell
{
public:
    TrayShell() = default;
    TrayShell(const TrayShell &) = delete;
    TrayShell &operator=(const TrayShell &) = delete;
    virtual ~TrayShell() = default;

    /// Takes the notification values (512 to 518, 1026 to 1029) of the icon.
    using Notify = std::function<void(int value)>;
    virtual void setNotify(Notify notify) = 0;

    /// The menu, for desktops that show it on their own.
    virtual void setMenu(QMenu *menu) = 0;

    virtual void add(const TrayRecord &record) = 0;
    virtual void modify(const TrayRecord &record) = 0;
    virtual void remove(const TrayRecord &record) = 0;
    virtual void setVersion(const TrayRecord &record) = 0;

    /// True when the desktop has a notification area at present.
    virtual bool isAvailable() const = 0;
};

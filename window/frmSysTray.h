// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "window/TrayShell.h"

#include <QHash>
#include <QMenu>
#include <QObject>
#include <QVariant>

#include <memory>
#include <vector>

/// The icon in the notification area, with its menu. It stands there as long as this object lives.
class frmSysTray : public QObject
{
    Q_OBJECT

public:
    /// The system's version as its version call gives it: the major number in the low byte, the minor in the next one,
    /// a clear top bit for the NT line. The default stands for a shell with wide texts and balloons.
    static constexpr quint32 defaultVersion = 0x00000105;

    /// Adds the icon. `icon` is the form's own picture, `applicationTitle` the first tip.
    frmSysTray(std::unique_ptr<TrayShell> shell, const QIcon &icon, const QString &applicationTitle,
               quint32 version = defaultVersion);

    /// Takes the icon away.
    ~frmSysTray() override;

    /// Shows a balloon at the icon; does nothing where the shell has none. `timeOut` (milliseconds) is converted to 32
    /// bits: throws RunTimeError::typeMismatch() or overflow().
    void ShowBalloonTip(const QString &message, const QString &title, qint32 iconFlags, const QVariant &timeOut);

    /// The tip of the narrow record; "" when the shell takes wide texts.
    QString ToolTip() const;
    void setToolTip(const QString &text);

    /// The picture of the narrow record; 0 when the shell takes wide texts.
    qint32 IconHandle() const;

    /// Shows the picture of that handle.
    void setIconHandle(qint32 handle);

    /// The handle of a picture, for setIconHandle(). One picture has one handle for the life of this object.
    qint32 handleOf(const QIcon &icon);

    /// Adds an entry ("-" makes a separator) and returns its index.
    qint32 AddMenuItem(const QString &caption, const QString &key, bool isDefault);

    /// Does nothing for an index that there isn't.
    void EnableMenuItem(qint32 index, bool enabled);

    /// Takes an entry out; entry 0 only loses its caption. Does nothing for an index that there isn't.
    void RemoveMenuItem(qint32 index);

    /// The index of the default entry; negative for none. Setting an index that there isn't makes it 0.
    qint32 DefaultMenuIndex() const { return m_trayDefaultIndex; }
    void setDefaultMenuIndex(qint32 index);

    /// Shows the menu at the pointer.
    void ShowMenu();

    /// Takes a notification of the shell and raises its event.
    void handleNotification(int value);

    /// True when the desktop has a notification area at present, so that a hidden window can be reached through the
    /// icon.
    bool isAvailable() const { return m_shell->isAvailable(); }

    bool isUnicodeShell() const { return m_isUnicodeShell; }
    bool hasBalloons() const { return m_hasBalloons; }

    /// The menu as it is shown.
    QMenu *menu() { return &m_mnuPopup; }

Q_SIGNALS:
    void SysTrayMouseDown(int button); ///< 1 left (which is raised by its release), 2 right
    void SysTrayMouseUp(int button);
    void SysTrayMouseMove();
    void SysTrayDoubleClick(int button);
    void MenuClick(int index, const QString &key);
    void BalloonShow();
    void BalloonHide();
    void BalloonTimeOut();
    void BalloonClicked();

private:
    struct Element
    {
        QString caption;
        QString tag;
        bool visible = false;
        QAction *action = nullptr;
    };
    TrayRecord &liveRecord() { return m_isUnicodeShell ? m_wide : m_narrow; }
    void setText(QString &field, const QString &text, qsizetype size) const;
    bool isValid(qint32 index) const;
    void loadElement();
    void refresh();
    qsizetype tipSize() const { return m_hasBalloons ? 128 : 64; }

    std::unique_ptr<TrayShell> m_shell;
    bool m_isUnicodeShell = false;
    bool m_hasBalloons = false;
    bool m_firstItemUsed = false;
    qint32 m_trayDefaultIndex = -1;
    TrayRecord m_narrow;
    TrayRecord m_wide;
    QHash<qint32, QIcon> m_pictures;
    QMenu m_mnuPopup;
    std::vector<Element> m_mnuSysTray;
};

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "controls/DialogBase.h"
#include "controls/FileDialogs.h"

#include <functional>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QWidget;
class TabControl;
struct AppSettings;

/// Edits the settings in memory, and the entry that starts the program with the session, which is written at once.
/// For one showing: construct, exec().
class frmOptions final : public DialogBase
{
    Q_OBJECT

public:
    /// The entry that starts the program with the session: the two operations of core/RunAtStartup.h, bound to the
    /// registry and to the program's name.
    struct RunAtStartup
    {
        std::function<int()> isRunAtStartup;            ///< 2 when the entry exists, else 0
        std::function<void(int state)> setRunAtStartup; ///< not 0: makes the entry; 0: removes it
    };

    /// Fills the dialog. Throws RunTimeError::invalidProperty() when the stored start mode is none of the list,
    /// overflow() for a read delay that has no magnitude. `askSound` asks for a sound file, none stands for the
    /// system's open dialog.
    frmOptions(QWidget *owner, AppSettings &settings, RunAtStartup runAtStartup, AskFile askSound = {});

    /// What "Appliquer" does. Throws RunTimeError for numbers that don't convert; what comes before them is applied by
    /// then.
    void handleApply();

    /// What leaving txtRead, respectively txtSMTPPort, does. Both throw RunTimeError::overflow() above 32767.
    void handleReadLeft();
    void handlePortLeft();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget *buildGeneralPage();
    QWidget *buildFluxPage();
    QWidget *buildMailsPage();
    void connectControls();
    void load();
    void showMode(bool shown);

    AppSettings &m_settings;
    RunAtStartup m_runAtStartup;
    AskFile m_askSound;
    bool m_wasRunAtStartup = false;
    TabControl *m_tstrOpt = nullptr;
    QCheckBox *m_chkDemWin = nullptr;
    QLabel *m_lblMode = nullptr;
    QComboBox *m_cmbMode = nullptr;
    QCheckBox *m_chkAutoUpdate = nullptr;
    QCheckBox *m_chkNotify = nullptr;
    QLineEdit *m_txtSon = nullptr;
    QLineEdit *m_txtRead = nullptr;
    QCheckBox *m_chkNoRead = nullptr;
    QLineEdit *m_txtSMTPServer = nullptr;
    QLineEdit *m_txtSMTPPort = nullptr;
    QLineEdit *m_txtFromMail = nullptr;
    QLineEdit *m_txtFromName = nullptr;
    QPushButton *m_cmdAppliquer = nullptr;
};

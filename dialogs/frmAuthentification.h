#pragma once

#include "controls/DialogBase.h"

class MainWindow;
class QLineEdit;

/// Asks for the user name and the password of the feed in the address box.
///
/// For one showing: construct it when a download ends with "authentication asked", and exec() it. "OK" puts both texts
/// into the main window as its credentials, calls LoadFile() and closes; "Annuler" only closes.
class frmAuthentification final : public DialogBase
{
    Q_OBJECT

public:
    explicit frmAuthentification(MainWindow &window);

private:
    void handleOk();

    MainWindow &m_window;
    QLineEdit *m_txtUsername;
    QLineEdit *m_txtPassword;
};

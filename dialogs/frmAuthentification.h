// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "controls/DialogBase.h"

#include <QString>

#include <functional>

class QLineEdit;

/// Asks for the user name and the password of the feed in the address box.
///
/// For one showing: construct it when a download ends with "authentication asked", and exec() it. "OK" sets both texts
/// as credentials, loads the feed again and closes; "Annuler" only closes.
class frmAuthentification final : public DialogBase
{
    Q_OBJECT

public:
    struct Port
    {
        /// Sets the credentials of the next download from the address box.
        std::function<void(const QString &username, const QString &password)> setCredentials;
        std::function<void()> LoadFile; ///< opens through the network what the address box holds
    };

    frmAuthentification(QWidget *owner, Port port);

private:
    void handleOk();

    Port m_port;
    QLineEdit *m_txtUsername;
    QLineEdit *m_txtPassword;
};

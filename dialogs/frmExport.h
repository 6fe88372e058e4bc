// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "controls/DialogBase.h"
#include "controls/FileDialogs.h"

#include <QString>

class QCheckBox;
class QLineEdit;

/// Writes the feeds of feeds.xml, as the file stands on the disk, to an OPML 1.1 file of the user's choice.
/// For one showing: construct, exec().
class frmExport final : public DialogBase
{
    Q_OBJECT

public:
    /// `catalogue` is the path of feeds.xml. `askPath` asks where to save; none stands for the system's save dialog.
    frmExport(QWidget *owner, QString catalogue, AskFile askPath = {});

    /// What "Exporter" does: asks for the path, writes the file, closes. A cancelled question and a feeds.xml that
    /// doesn't load leave the dialog open. Throws as writeOpml().
    void handleExport();

private:
    QString m_catalogue;
    AskFile m_askPath;
    QLineEdit *m_txtTitre;
    QLineEdit *m_txtNom;
    QLineEdit *m_txtEmail;
    QCheckBox *m_chkStructure;
};

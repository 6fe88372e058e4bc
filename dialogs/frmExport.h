#pragma once

#include "controls/DialogBase.h"
#include "dialogs/FileDialogs.h"

#include <QString>

class MainWindow;
class QCheckBox;
class QLineEdit;

/// Writes the feeds of feeds.xml, as the file stands on the disk, to an OPML 1.1 file of the user's choice.
/// For one showing: construct, exec().
class frmExport final : public DialogBase
{
    Q_OBJECT

public:
    /// `askPath` asks where to save; none stands for the system's save dialog.
    explicit frmExport(MainWindow &window, AskFile askPath = {});

    /// The name of the logged-on user; "" when the system knows none.
    static QString currentUserName();

    /// What "Exporter" does: asks for the path, writes the file in one step, closes. A cancelled question and a
    /// feeds.xml that doesn't load leave the dialog open. Throws RunTimeError when the file can't be written (the old
    /// one then stands), for a character outside the system's code page, and for a catalogue that lacks what the lines
    /// need.
    void handleExport();

private:
    MainWindow &m_window;
    AskFile m_askPath;
    QLineEdit *m_txtTitre;
    QLineEdit *m_txtNom;
    QLineEdit *m_txtEmail;
    QCheckBox *m_chkStructure;
};

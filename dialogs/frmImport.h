// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "controls/DialogBase.h"
#include "controls/FileDialogs.h"
#include "exchange/OpmlDocument.h"

#include <QString>

class ImportList;
class ImportRun;
class Messages;
class OpmlDownload;
class ProgressBar;
class QLabel;
class QLayout;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QStackedLayout;
class QWidget;

/// The wizard that subscribes to the feeds of an OPML file, from the disk or from the web. It can be left only through
/// its buttons. For one showing: construct it on the stack, exec().
class frmImport final : public DialogBase
{
    Q_OBJECT

public:
    /// `download` and `run` are fresh, serve this showing only and outlive it. `askPath` asks for the OPML file, none
    /// stands for the system's open dialog.
    frmImport(QWidget *owner, Messages &messages, OpmlDownload &download, ImportRun &run, AskFile askPath = {});
    ~frmImport() override;

    /// Goes to the page of the file with `path` in it, and from there on to its feeds, as the buttons would. For a
    /// wizard that was just opened.
    void openFile(const QString &path);

    /// What the buttons do.
    void handleNext();
    void handleBack();

    /// Fetches the ticked feeds, one after the other, and closes. Runs the event loop meanwhile.
    void handleFinish();

    /// Escape is "Annuler", as long as that button is there.
    void reject() override;

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    QWidget *buildSourcePage();
    QWidget *buildFilePage();
    QWidget *buildWebPage();
    QWidget *buildRunPanel();
    QLayout *buildButtons();
    void showPage(qint16 number);
    void refuse(const QString &reason);
    void takeOpmlFile(const QString &path);
    void connectImport();
    void handleFetched(const QString &path);
    void handleDownloadFailed(qint32 status);
    void handlePassed(int count);
    void handleStop();

    Messages &m_messages;
    OpmlDownload &m_download;
    ImportRun &m_run;
    AskFile m_askPath;
    OpmlDocument m_opmlDocument;

    qint16 m_wizardPage = 0;
    qint16 m_previousPage = 0;

    QStackedLayout *m_pages = nullptr; ///< the four pages, and the panel of the run
    QRadioButton *m_optFromFile = nullptr;
    QLineEdit *m_txtOPMLPath = nullptr;
    QLineEdit *m_txtURL = nullptr;
    ImportList *m_list = nullptr;
    QLabel *m_lblTitre = nullptr;
    ProgressBar *m_vbalProgressBar1 = nullptr;
    QPushButton *m_cmdPrecedent = nullptr;
    QPushButton *m_cmdSuivant = nullptr;
    QPushButton *m_cmdTerminer = nullptr;
    QPushButton *m_cmdAnnuler = nullptr;
    QPushButton *m_cmdCanceller = nullptr;
};

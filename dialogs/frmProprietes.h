// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "controls/DialogBase.h"
#include "core/FeedTree.h"

#include <QString>

#include <functional>
#include <memory>

class CachedFeed;
class QCheckBox;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QWidget;
class TabControl;
class UpDown;
class clsDES;
struct FeedTables;

/// Shows what is known of the feed on screen; update interval, retention and stored credentials can be changed, in the
/// per-feed tables only.
class frmProprietes final : public DialogBase
{
    Q_OBJECT

public:
    /// The feed on screen, and where its values are kept.
    struct Port
    {
        std::shared_ptr<CachedFeed> feed;          ///< never null
        bool openedByAddress;                      ///< the feed came from the address box: it is unsubscribed
        QString address;                           ///< the text of the address box
        std::function<FeedNodePtr()> selectedNode; ///< of the feed tree; null when nothing is selected
        FeedTables &tables;
        clsDES &cipher;
    };

    /// The dialog with empty fields.
    frmProprietes(QWidget *owner, Port port);

    /// Fills the fields from the feed on screen; false, with nothing changed, when no feed is loaded. Throws
    /// RunTimeError when the stored retention of a subscribed feed is no 16-bit number, or when no node is selected for
    /// one.
    bool fillFrom();

    /// Adds the tab of the credentials.
    void addAuthentication();

    /// What "Appliquer" does, to the tables of the tree's selected node, whatever that is. A period that is no whole
    /// number of 16 bits isn't stored, and its box shows what it held before. Throws RunTimeError when nothing is
    /// selected, when the tables don't know its key, and when the retention to negate is no number.
    void handleApply();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    QWidget *buildGeneralPage();
    QWidget *buildInfosPage();
    QWidget *buildSynchroPage();
    QWidget *buildAdvancedPage();
    QWidget *buildAuthenticationPage();
    void fillSynchro(const QString &key);
    void fillAuthentication(const QString &key);
    void enableCache(bool enabled);

    Port m_port;
    QString m_period; ///< what its box held when it was filled, or was stored since
    TabControl *m_tstrProp = nullptr;
    QWidget *m_picAuthentication = nullptr;
    QLineEdit *m_txtTitle = nullptr;
    QLineEdit *m_txtURL = nullptr;
    QLineEdit *m_txtSite = nullptr;
    QPlainTextEdit *m_txtDescription = nullptr;
    QLineEdit *m_txtVersion = nullptr;
    QLineEdit *m_txtLangue = nullptr;
    QLineEdit *m_txtEditeur = nullptr;
    QLineEdit *m_txtWebmaster = nullptr;
    QLineEdit *m_txtCopyright = nullptr;
    QLineEdit *m_txtMaj = nullptr;
    QLabel *m_lblCache = nullptr;
    QLineEdit *m_txtCache = nullptr;
    UpDown *m_upDown2 = nullptr;
    QCheckBox *m_chkNoDel = nullptr;
    QPlainTextEdit *m_txtExtensions = nullptr;
    QLineEdit *m_txtUsername = nullptr;
    QLineEdit *m_txtPassword = nullptr;
    QPushButton *m_cmdAppliquer = nullptr;
};

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "controls/DialogBase.h"
#include "exchange/SearchEndpoints.h"

#include <QString>

#include <array>
#include <functional>

class QComboBox;
class QLineEdit;
class QRadioButton;
class QWidget;
class TabControl;

/// Turns a few choices into one address of a search service and hands it over.
/// For one showing: construct, exec().
class frmRechercher final : public DialogBase
{
    Q_OBJECT

public:
    /// The ways out of a search.
    struct Port
    {
        std::function<void(const QString &url)> navigate; ///< shows the page in the browser pane
        std::function<void(const QString &text)> setAddressText;
        /// Sets the credentials of the next download from the address box.
        std::function<void(const QString &username, const QString &password)> setCredentials;
        std::function<void()> LoadFile; ///< opens through the network what the address box holds
    };

    /// `tab` is the tab to show at once: 1 Feedster, 2 DayPop, 3 the web.
    frmRechercher(QWidget *owner, Port port, const SearchEndpoints &endpoints, int tab);

    /// Shows the page of the tab with that index (1 to 3) and hides the others.
    void changePics(int index);

    /// The address that the choices of the selected tab stand for. Only blanks are replaced in it.
    QString searchUrl() const;

private:
    QWidget *buildFeedsterPage();
    QWidget *buildDayPopPage();
    QWidget *buildWebPage();
    QString webUrl() const;
    void openSearchResult(const QString &url, bool inBrowser);

    Port m_port;
    SearchEndpoints m_endpoints;
    TabControl *m_tstrPrinc = nullptr;
    std::array<QLineEdit *, 3> m_txtRecherche{};
    std::array<QRadioButton *, 2> m_optTri{};
    std::array<QRadioButton *, 2> m_optCategory{};
    std::array<QRadioButton *, 2> m_optSearchText{};
    std::array<QRadioButton *, 3> m_optWebSearch{};
    std::array<QLineEdit *, 2> m_txtNbResult{};
    QComboBox *m_cboWhere = nullptr;
    QComboBox *m_cboLangue = nullptr;
};

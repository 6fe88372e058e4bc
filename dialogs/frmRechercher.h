#pragma once

#include "controls/DialogBase.h"
#include "exchange/SearchEndpoints.h"

#include <array>

class MainWindow;
class QComboBox;
class QLineEdit;
class QRadioButton;
class QWidget;
class TabControl;

/// Turns a few choices into one address of a search service and hands it to the main window.
/// For one showing: construct, exec().
class frmRechercher final : public DialogBase
{
    Q_OBJECT

public:
    /// `tab` is the tab to show at once: 1 Feedster, 2 DayPop, 3 the web.
    frmRechercher(MainWindow &window, const SearchEndpoints &endpoints, int tab);

    /// Shows the page of the tab with that index (1 to 3) and hides the others.
    void changePics(int index);

    /// The address that the choices of the selected tab stand for. Only blanks are replaced in it.
    QString searchUrl() const;

private:
    QWidget *buildFeedsterPage();
    QWidget *buildDayPopPage();
    QWidget *buildWebPage();
    QString webUrl() const;

    MainWindow &m_window;
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

/// The way out of every search: closes `form`, then shows `url` in the browser pane, or opens it as a feed through the
/// address box without credentials.
void openSearchResult(MainWindow &window, frmRechercher &form, const QString &url, bool inBrowser);

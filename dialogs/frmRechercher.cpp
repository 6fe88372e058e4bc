// SPDX-License-Identifier: GPL-3.0-or-later

#include "dialogs/frmRechercher.h"

#include "controls/TabControl.h"
#include "controls/Twips.h"
#include "controls/UpDown.h"
#include "dialogs/DialogParts.h"
#include "exchange/SearchAddress.h"
#include "platform/Literals.h"

#include <QAbstractItemView>
#include <QButtonGroup>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include <cmath>

using namespace DialogParts;

namespace {

struct Choice
{
    QString text;
    QString code; ///< in the address
};

const std::array<Choice, 3> &kinds()
{
    static const std::array<Choice, 3> table{
        {{u"Flux RSS et blogs"_s, u"a"_s}, {u"Flux RSS"_s, u"n"_s}, {u"Blogs"_s, u"w"_s}}};
    return table;
}

const std::array<Choice, 11> &languages()
{
    static const std::array<Choice, 11> table{{{u"Toutes les langues"_s, QString()},
                                               {u"English"_s, u"en"_s},
                                               {u"Français"_s, u"fr"_s},
                                               {u"Deutsch"_s, u"de"_s},
                                               {u"Nederlands"_s, u"nl"_s},
                                               {u"Svenska"_s, u"sv"_s},
                                               {u"Español"_s, u"es"_s},
                                               {u"Suomi"_s, u"fi"_s},
                                               {u"Norsk"_s, u"no"_s},
                                               {u"Português"_s, u"pt"_s},
                                               {u"Italiano"_s, u"it"_s}}};
    return table;
}

template <class Table>
QComboBox *comboBox(const QString &name, const Table &table)
{
    auto *box = named(new QComboBox, name);
    box->view()->setAccessibleName(u"Choix"_s);
    for (const Choice &choice : table)
        box->addItem(choice.text, choice.code);
    return box;
}

/// Adds a row with a group of buttons, the first of which is set. Each group has a line of its own: below one another
/// two of them would look like one.
template <std::size_t Count>
void addOptions(QGridLayout &grid, const QString &caption, std::array<QRadioButton *, Count> &options,
                const QString &name, const std::array<QString, Count> &captions)
{
    auto *group = new QButtonGroup(grid.parentWidget());
    auto *line = new QHBoxLayout;
    line->setSpacing(2 * edge);
    for (std::size_t i = 0; i < Count; ++i) {
        options[i] = named(new QRadioButton(captions[i]), arrayName(name, static_cast<int>(i)));
        group->addButton(options[i]);
        line->addWidget(options[i]);
    }
    line->addStretch();
    options[0]->setChecked(true);
    const int row = grid.rowCount();
    if (!caption.isEmpty())
        grid.addWidget(label(caption, options[0]), row, 0);
    grid.addLayout(line, row, 1);
}

void addResultCount(QGridLayout &grid, QLineEdit *&box, int index)
{
    box = numberBox(arrayName(u"txtNbResult"_s, index));
    box->setText(u"15"_s);
    auto *arrows = named(new UpDown(box, 15, 100, 1, 15), arrayName(u"UpDown1"_s, index));
    auto *pair = new QHBoxLayout;
    pair->setSpacing(0);
    pair->addWidget(box);
    pair->addWidget(arrows);
    pair->addStretch();
    const int row = grid.rowCount();
    grid.addWidget(label(u"Nombre de résultats à afficher :"_s, box), row, 0);
    grid.addLayout(pair, row, 1);
}

/// A page with the words above and the frame of the options, which is 200 twips narrower than the page.
QWidget *searchPage(const QString &name, QLineEdit *words, QGroupBox *options)
{
    auto *page = named(new QWidget, name);
    auto *column = new QVBoxLayout(page);
    const int margin = static_cast<int>(std::lround(100.0 / Twips::perPixelX(page)));
    column->setContentsMargins(margin, margin, margin, margin);
    auto *row = new QHBoxLayout;
    row->addWidget(label(u"Rechercher :"_s, words));
    row->addWidget(words, 1);
    column->addLayout(row);
    column->addWidget(options);
    column->addStretch();
    return page;
}

} // namespace

frmRechercher::frmRechercher(QWidget *owner, Port port, const SearchEndpoints &endpoints, int tab)
    : DialogBase(u"Rechercher"_s, owner), m_port(std::move(port)), m_endpoints(endpoints)
{
    m_tstrPrinc = named(new TabControl, u"tstrPrinc"_s);
    m_tstrPrinc->addTab(u"feedster"_s, u"Feedster"_s, buildFeedsterPage());
    // This key is another service's; nothing reads it.
    m_tstrPrinc->addTab(u"syndic8"_s, u"DayPop"_s, buildDayPopPage());
    m_tstrPrinc->addTab(u"web"_s, u"Via le web"_s, buildWebPage());

    auto *cmdRechercher = button(u"cmdRechercher"_s, u"&Rechercher"_s);
    auto *cmdAnnuler = button(u"cmdAnnuler"_s, u"&Annuler"_s);
    layOut(*this, m_tstrPrinc, buttonRow({cmdRechercher, cmdAnnuler}));
    cmdRechercher->setDefault(true);
    connect(m_tstrPrinc, &TabControl::TabClick, this, &frmRechercher::changePics);
    connect(cmdRechercher, &QPushButton::clicked, this,
            [this] { openSearchResult(searchUrl(), m_tstrPrinc->selectedTab() == 3); });
    connect(cmdAnnuler, &QPushButton::clicked, this, &frmRechercher::reject);

    changePics(tab);
}

QWidget *frmRechercher::buildFeedsterPage()
{
    auto *options = named(new QGroupBox(u"Options"_s), u"fraOptionsFeedster"_s);
    auto *grid = new QGridLayout(options);
    addOptions(*grid, u"Trier par :"_s, m_optTri, u"optTri"_s, {u"Date"_s, u"Pertinence"_s});
    // Spelled as users know it.
    addOptions(*grid, QString(), m_optCategory, u"optCategory"_s, {u"Partourt"_s, u"Sur les blogs seulement"_s});
    addResultCount(*grid, m_txtNbResult[0], 0);
    m_txtRecherche[0] = lineEdit(u"txtRecherche_0"_s);
    return searchPage(u"picFeedster"_s, m_txtRecherche[0], options);
}

QWidget *frmRechercher::buildDayPopPage()
{
    auto *options = named(new QGroupBox(u"Options"_s), u"fraOptionsSyndic8"_s);
    auto *grid = new QGridLayout(options);
    std::array<QRadioButton *, 2> optTriDayPop{}; // shown, never read
    addOptions(*grid, u"Trier par :"_s, optTriDayPop, u"optTriDayPop"_s, {u"Date"_s, u"Pertinence"_s});
    addOptions(*grid, u"Rechercher :"_s, m_optSearchText, u"optSearchText"_s,
               {u"le texte complet"_s, u"les titres seulement"_s});
    m_cboWhere = comboBox(u"cboWhere"_s, kinds());
    addRow(*grid, u"Rechercher dans :"_s, m_cboWhere);
    m_cboLangue = comboBox(u"cboLangue"_s, languages());
    addRow(*grid, u"Langue :"_s, m_cboLangue);
    addResultCount(*grid, m_txtNbResult[1], 1);
    m_txtRecherche[1] = lineEdit(u"txtRecherche_1"_s);
    return searchPage(u"picDayPop"_s, m_txtRecherche[1], options);
}

QWidget *frmRechercher::buildWebPage()
{
    auto *page = named(new QWidget, u"picWeb"_s);
    auto *column = new QVBoxLayout(page);
    const std::array<QString, 3> services{u"Syndic8"_s, u"Newsisfree"_s, u"BlogStreet"_s};
    const int height = fontMetrics().height() * 3 / 2;
    for (std::size_t i = 0; i < services.size(); ++i) {
        // The picture, 120 by 24, is the choice's only caption.
        auto *option = named(new QRadioButton, arrayName(u"optWebSearch"_s, static_cast<int>(i)));
        option->setIcon(QIcon(u":/icons/"_s + services[i].toLower() + u".svg"_s));
        option->setIconSize(QSize(height * 5, height));
        option->setAccessibleName(services[i]);
        option->setToolTip(services[i]);
        column->addWidget(option);
        m_optWebSearch[i] = option;
    }
    m_optWebSearch[0]->setChecked(true);
    m_txtRecherche[2] = lineEdit(u"txtRecherche_2"_s);
    m_txtRecherche[2]->setAccessibleName(u"Rechercher"_s);
    column->addWidget(m_txtRecherche[2]);
    column->addStretch();
    return page;
}

void frmRechercher::changePics(int index)
{
    m_tstrPrinc->selectTab(index);
    if (index >= 1 && index <= 3)
        m_txtRecherche[static_cast<std::size_t>(index - 1)]->setFocus();
}

QString frmRechercher::webUrl() const
{
    using SearchAddress::WebService;
    const WebService service = m_optWebSearch[0]->isChecked()   ? WebService::Syndic8
                               : m_optWebSearch[1]->isChecked() ? WebService::Newsisfree
                                                                : WebService::BlogStreet;
    return SearchAddress::web(m_endpoints, service, m_txtRecherche[2]->text());
}

QString frmRechercher::searchUrl() const
{
    // One choice sorts the results of both services: the one of the first page. That of the second page has no effect.
    const bool byDate = m_optTri[0]->isChecked();
    switch (m_tstrPrinc->selectedTab()) {
    case 1:
        return SearchAddress::feedster(
            m_endpoints, {m_txtRecherche[0]->text(), byDate, !m_optCategory[0]->isChecked(), m_txtNbResult[0]->text()});
    case 2:
        return SearchAddress::dayPop(m_endpoints, {m_txtRecherche[1]->text(), byDate, !m_optSearchText[0]->isChecked(),
                                                   m_cboWhere->currentData().toString(),
                                                   m_cboLangue->currentData().toString(), m_txtNbResult[1]->text()});
    default:
        return webUrl();
    }
}

/// The way out of every search. What opens as a feed opens without credentials.
void frmRechercher::openSearchResult(const QString &url, bool inBrowser)
{
    accept();
    if (inBrowser) {
        m_port.navigate(url);
        return;
    }
    m_port.setAddressText(url);
    m_port.setCredentials(QString(), QString());
    m_port.LoadFile();
}

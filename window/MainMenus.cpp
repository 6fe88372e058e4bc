// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/MainMenus.h"

#include "controls/ImageList.h"
#include "platform/Literals.h"

#include <span>
#include <vector>

namespace {

/// One line of a menu's table. The level counts from 1; an entry stands below the last one of the level above.
struct Line
{
    int level;
    const char16_t *caption;
    const char16_t *key = u"";
    int icon = -1;
};

constexpr Line menuBar[] = {
    {1, u"&Fichier", u"mnuFichier"},
    {2, u"&Importer des flux RSS...\tCtrl+I", u"mnuImporterFlux"},
    {2, u"&Exporter mes flux RSS...\tCtrl+E", u"mnuExporterFlux"},
    {2, u"-", u"mnuSepFichier1"},
    {2, u"&Quitter\tCtrl+Q", u"mnuQuitter"},
    {1, u"&Affichage", u"mnuAffichage"},
    {2, u"&Style", u"mnuStyle"},
    {3, u"Standard", u"mnuStandard"},
    {3, u"Office XP", u"mnuOffice"},
    {2, u"&Barre d'outils", u"mnuToolBarStyle"},
    {3, u"Grandes", u"mnuTBGrande"},
    {3, u"Petites", u"mnuTBPetite"},
    {1, u"&Outils", u"mnuOutils"},
    {2, u"Tout mettre à jour", u"mnuMajAll"},
    {2, u"-", u"mnuSepOutils1"},
    {2, u"Rechercher", u"mnuRechercher"},
    {3, u"Avec Feedster\tCtrl+F", u"mnuRechercherFeedster"},
    {3, u"Avec DayPop", u"mnuRechercherDayPop"},
    {3, u"Via le web", u"mnuRechercherWeb"},
    {2, u"-", u"mnuSepOutils2"},
    {2, u"Op&tions", u"mnuOptions"},
    {1, u"&Aide", u"mnuAide"},
    {2, u"&Sommaire", u"mnuAideSommaire"},
    {2, u"-"},
    {2, u"&Tovik sur le web", u"mnuTovikweb"},
    {3, u"&Accueil", u"mnuWebAccueil"},
    {3, u"&Informations sur le produit", u"mnuWebInfos"},
    {3, u"FAQ", u"mnuWebFAQ"},
    {2, u"-"},
    {2, u"À &propos...", u"mnuApropos"},
};

constexpr Line listMenu[] = {
    {1, u"Supprimer", u"mnuPopLvwSupprimer", 1},
    {1, u"-", u"mnuPopLvwSep1"},
    {1, u"Marquer", u"mnuPopLvwMark"},
    {2, u"Comme lu", u"mnuPopLvwMarkAsRead"},
    {2, u"Comme non lu", u"mnuPopLvwMarkAsUnread"},
};

/// In the order of the columns, which count from 1.
constexpr Line columnMenu[] = {
    {1, u"Titre", u"mnuPopLvwHdrTitle"},
    {1, u"Lu/Non-Lu", u"mnuPopLvwHdrRead"},
    {1, u"Date de publication", u"mnuPopLvwHdrPubDate"},
    {1, u"Date de téléchargement", u"mnuPopLvwHdrDownloadDate"},
    {1, u"Auteur", u"mnuPopLvwHdrAuthor"},
    {1, u"Catégorie", u"mnuPopLvwHdrCategory"},
};

constexpr Line treeMenu[] = {
    {1, u"Rafraichir", u"mnuRafraichir", 0},          {1, u"Supprimer", u"mnuSupprimer", 1},
    {1, u"Propriétés", u"mnuProprietes", 2},          {1, u"-", u"mnuTreeViewSep1"},
    {1, u"Nouveau dossier", u"mnuNouveauDossier", 3},
};

void fill(cPopupMenu &menu, std::span<const Line> lines)
{
    std::vector<int> above = {-1}; // index of the last entry of each level
    for (const Line &line : lines) {
        const auto level = static_cast<std::size_t>(line.level);
        above.resize(level);
        cPopupMenu::Item item;
        item.caption = QString::fromUtf16(line.caption);
        item.key = QString::fromUtf16(line.key);
        item.parentIndex = above.back();
        item.iconIndex = line.icon;
        above.push_back(menu.AddItem(item));
    }
}

void fillColumnMenu(cPopupMenu &menu, const AppSettings &settings)
{
    qint32 column = 0;
    for (const Line &line : columnMenu) {
        ++column;
        cPopupMenu::Item item;
        item.caption = QString::fromUtf16(line.caption);
        item.key = QString::fromUtf16(line.key);
        item.itemData = column;
        item.checkable = true;
        item.checked = settings.columnWidth[static_cast<std::size_t>(column)] != 0;
        menu.AddItem(item);
    }
}

} // namespace

MainMenus::MainMenus(QWidget *form, QWidget *tree, const AppSettings &settings)
    : m_cMenu(form, settings.officeStyle), mnuPopUpListView(form, settings.officeStyle),
      mnuPopUpListViewHeader(form, settings.officeStyle), mnuTreeView(tree, settings.officeStyle),
      mnuAttachment(form, settings.officeStyle)
{
    for (cPopupMenu *menu : {&mnuPopUpListView, &mnuTreeView, &mnuAttachment})
        menu->setImageList(&ImageLists::vbalImageList3());
    mnuPopUpListView.setName(u"Message"_s);
    mnuPopUpListViewHeader.setName(u"Colonnes"_s);
    mnuTreeView.setName(u"Favori"_s);
    mnuAttachment.setName(u"Pièces jointes"_s);
    fill(m_cMenu, menuBar);
    fill(mnuPopUpListView, listMenu);
    fill(mnuTreeView, treeMenu);
    fillColumnMenu(mnuPopUpListViewHeader, settings);
    const QString standard = u"mnuStandard"_s;
    const QString office = u"mnuOffice"_s;
    const QString big = u"mnuTBGrande"_s;
    const QString small = u"mnuTBPetite"_s;
    settings.officeStyle ? checkOneOf(office, standard) : checkOneOf(standard, office);
    settings.smallToolbars ? checkOneOf(small, big) : checkOneOf(big, small);
}

void MainMenus::checkOneOf(const QString &checked, const QString &unchecked)
{
    m_cMenu.setChecked(m_cMenu.IndexForKey(checked), true);
    m_cMenu.setChecked(m_cMenu.IndexForKey(unchecked), false);
}

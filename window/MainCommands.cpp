// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/MainCommands.h"

#include "controls/cToolbar.h"
#include "core/FeedTreeState.h"
#include "dialogs/MakerSite.h"
#include "engine/UpdateScheduler.h"
#include "platform/Literals.h"
#include "reading/ReadingPane.h"
#include "window/Dialogs.h"
#include "window/MainFrame.h"
#include "window/MainToolbar.h"
#include "window/TreeCommands.h"

MainCommands::MainCommands(Parts parts, QObject *parent) : QObject(parent), m_parts(std::move(parts))
{
    addWindowCommands();
    addDialogCommands();
    addItemAndTreeCommands();
    connectMenu(m_parts.frame.menus.m_cMenu);
    connectMenu(m_parts.frame.menus.mnuPopUpListView);
    connectMenu(m_parts.frame.menus.mnuTreeView);
    connect(&m_parts.frame.menus.mnuPopUpListViewHeader, &cPopupMenu::Click, this, &MainCommands::handleColumnEntry);
    connect(m_parts.frame.cToolbar1, &cToolbar::ButtonClick, this, &MainCommands::handleButton);
}

void MainCommands::add(const char16_t *key, const std::function<void()> &action)
{
    m_actions.insert(QString::fromUtf16(key), action);
}

void MainCommands::addWindowCommands()
{
    const auto site = [this](const QString &path) {
        return [this, path] { m_parts.openInSystemBrowser(MakerSite::page(path)); };
    };
    add(u"mnuQuitter", m_parts.quit);
    for (const char16_t *key : {u"mnuOffice", u"mnuStandard"})
        add(key, [this, key] { m_parts.frame.setStyle(QString::fromUtf16(key)); });
    for (const char16_t *key : {u"mnuTBGrande", u"mnuTBPetite"})
        add(key, [this, key] { m_parts.frame.setToolbarSize(QString::fromUtf16(key)); });
    add(u"mnuMajAll", [this] { m_parts.scheduler.updateAllFeeds(); });
    add(u"mnuWebAccueil", site(QString()));
    add(u"mnuWebInfos", site(u"prog/Quillwire/"_s));
    add(u"mnuWebFAQ", site(u"prog/Quillwire/faq.php"_s));
}

void MainCommands::addDialogCommands()
{
    Dialogs &dialogs = m_parts.dialogs;
    add(u"mnuOptions", [&dialogs] { dialogs.showOptions(); });
    add(u"mnuRechercherFeedster", [&dialogs] { dialogs.showSearchDialog(1); });
    add(u"mnuRechercherDayPop", [&dialogs] { dialogs.showSearchDialog(2); });
    add(u"mnuRechercherWeb", [&dialogs] { dialogs.showSearchDialog(3); });
    add(u"mnuImporterFlux", [&dialogs] { dialogs.showImport(); });
    add(u"mnuExporterFlux", [&dialogs] { dialogs.showExport(); });
    add(u"mnuAideSommaire", [&dialogs] { dialogs.showHelp(); });
    add(u"mnuApropos", [&dialogs] { dialogs.showAbout(); });
    add(u"mnuProprietes", [&dialogs] { dialogs.showFeedProperties(); });
}

void MainCommands::addItemAndTreeCommands()
{
    add(u"mnuPopLvwMarkAsUnread", [this] { m_parts.reading.MarkSelectedItem(true); });
    add(u"mnuPopLvwMarkAsRead", [this] { m_parts.reading.MarkSelectedItem(false); });
    add(u"mnuPopLvwSupprimer", [this] { m_parts.reading.DeleteSelectedItem(); });
    add(u"mnuRafraichir", [this] { m_parts.scheduler.updateFeed(m_parts.treeState.selected()); });
    add(u"mnuSupprimer", [this] { m_parts.treeCommands.deleteSelectedNode(m_parts.treeState.selected()); });
    add(u"mnuNouveauDossier", [this] { m_parts.treeCommands.createFolder(m_parts.treeState.selected()); });
}

void MainCommands::connectMenu(cPopupMenu &menu)
{
    connect(&menu, &cPopupMenu::Click, this, [this, &menu](int index) {
        if (const auto action = m_actions.value(menu.ItemKey(index)))
            action();
    });
}

void MainCommands::handleButton(int index)
{
    const FeedNodePtr selected = m_parts.treeState.selected();
    if (index == MainToolbar::Actualiser && selected)
        m_parts.scheduler.updateFeed(selected);
    else if (index == MainToolbar::Supprimer && selected)
        m_parts.treeCommands.deleteSelectedNode(selected);
    else if (index == MainToolbar::Proprietes)
        m_parts.dialogs.showFeedProperties();
    else if (index == MainToolbar::Ajouter)
        m_parts.addFeedOnShow();
}

void MainCommands::handleColumnEntry(int index)
{
    cPopupMenu &menu = m_parts.frame.menus.mnuPopUpListViewHeader;
    const bool shown = !menu.Checked(index);
    m_parts.frame.showColumn(menu.ItemData(index), shown);
    menu.setChecked(index, shown);
}

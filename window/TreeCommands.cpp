// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/TreeCommands.h"

#include "controls/cToolbar.h"
#include "core/FeedCatalogue.h"
#include "core/FeedTreeState.h"
#include "engine/FeedOpener.h"
#include "platform/Literals.h"
#include "platform/Messages.h"
#include "reading/BrowserPane.h"
#include "reading/ItemListView.h"
#include "window/FeedTreeView.h"
#include "window/MainFrame.h"
#include "window/MainToolbar.h"

TreeCommands::TreeCommands(Parts parts, QObject *parent) : QObject(parent), m_parts(std::move(parts))
{
    const FeedTreeView *tree = m_parts.frame.tvwFavoris;
    connect(tree, &FeedTreeView::nodeClicked, this, &TreeCommands::handleNodeClick);
    connect(tree, &FeedTreeView::nodeRightClicked, this, &TreeCommands::handleNodeRightClick);
    connect(tree, &FeedTreeView::arrowKeyTo, &m_parts.opener, &FeedOpener::openFeedNode);
    connect(tree, &FeedTreeView::nodeDropped, this, &TreeCommands::handleDrop);
}

void TreeCommands::enableButtons(const FeedNodePtr &node)
{
    const bool feed = node->image() == NodeImage::Feed;
    const bool folder = node->image() == NodeImage::Folder;
    m_parts.frame.cToolbar1->setButtonEnabled(MainToolbar::Actualiser, feed);
    m_parts.frame.cToolbar1->setButtonEnabled(MainToolbar::Supprimer, feed || folder);
    m_parts.frame.cToolbar1->setButtonEnabled(MainToolbar::Proprietes, feed);
    m_parts.frame.cToolbar1->setButtonEnabled(MainToolbar::Ajouter, false);
}

void TreeCommands::disableSendMail()
{
    m_parts.frame.tlbBrowser->setButtonEnabled(u"send_mail"_s, false);
}

void TreeCommands::handleNodeClick(const FeedNodePtr &node)
{
    enableButtons(node);
    if (node->image() == NodeImage::Feed) {
        disableSendMail();
        m_parts.opener.openFeedNode(node);
    } else if (node->image() == NodeImage::Folder) {
        m_parts.frame.WebBrowser1->Navigate(m_parts.homePage);
        m_parts.frame.lvwItems->items().clear();
        disableSendMail();
    }
}

void TreeCommands::handleNodeRightClick(const FeedNodePtr &node, const QPoint &globalPosition)
{
    enableButtons(node);
    const bool feed = node->image() == NodeImage::Feed;
    const auto enable = [this](const QString &key, bool enabled) {
        m_parts.frame.menus.mnuTreeView.setEnabled(m_parts.frame.menus.mnuTreeView.IndexForKey(key), enabled);
    };
    enable(u"mnuRafraichir"_s, feed);
    enable(u"mnuSupprimer"_s, feed || node->image() == NodeImage::Folder);
    enable(u"mnuProprietes"_s, feed);
    const FeedNodePtr selected = m_parts.treeState.selected();
    if (!selected || selected->key() != node->key()) {
        m_parts.opener.openFeedNode(node);
        m_parts.treeState.select(node);
    }
    m_parts.frame.menus.mnuTreeView.ShowPopupMenu(globalPosition + QPoint(5, 5));
}

void TreeCommands::handleDrop(const FeedNodePtr &target, bool insertAbove)
{
    const FeedNodePtr dragged = m_parts.frame.tvwFavoris->draggedNode();
    if (!dragged)
        return;
    const bool wasSelected = m_parts.treeState.selected() == dragged;
    m_parts.catalogue.moveFeed(dragged, target, insertAbove);
    if (wasSelected) // the move has made the node anew
        m_parts.treeState.select(m_parts.tree.find(dragged->key()));
}

void TreeCommands::deleteSelectedNode(const FeedNodePtr &node)
{
    if (!node)
        return;
    if (node->image() == NodeImage::Folder) {
        const Messages::Answer answer =
            m_parts.messages.show({u"Êtes-vous sur de vouloir supprimer ce dossier et tout son contenu ?"_s,
                                   u"Supprimer dossier"_s, Message::Icon::Information, Message::Buttons::YesNo});
        if (answer != Messages::Answer::Yes)
            return;
        m_parts.catalogue.deleteCatalogueFolder(node);
        m_parts.tree.remove(node);
    } else if (node->image() == NodeImage::Feed) {
        m_parts.catalogue.deleteCatalogueFeed(node->key());
        m_parts.tree.remove(node);
        m_parts.frame.lvwItems->items().clear();
        m_parts.frame.WebBrowser1->Navigate(m_parts.homePage);
    }
}

void TreeCommands::createFolder(const FeedNodePtr &node)
{
    if (!node)
        return;
    const QString name = m_parts.inputBox(u"Entrez un nom pour le nouveau dossier"_s, u"Nouveau dossier"_s);
    if (!name.isEmpty())
        m_parts.catalogue.createFolder(node, name);
}

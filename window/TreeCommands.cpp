#include "window/TreeCommands.h"

#include "controls/cPopupMenu.h"
#include "controls/cToolbar.h"
#include "core/FeedCatalogue.h"
#include "engine/CurrentFeed.h"
#include "engine/FeedOpener.h"
#include "engine/OpeningWindow.h"
#include "platform/Messages.h"
#include "window/FeedTreeView.h"
#include "window/MainToolbar.h"

TreeCommands::TreeCommands(Parts parts, QObject *parent) : QObject(parent), m_p(std::move(parts))
{
    connect(&m_p.tvwFavoris, &FeedTreeView::nodeClicked, this, &TreeCommands::handleNodeClick);
    connect(&m_p.tvwFavoris, &FeedTreeView::nodeRightClicked, this, &TreeCommands::handleNodeRightClick);
    connect(&m_p.tvwFavoris, &FeedTreeView::arrowKeyTo, this, &TreeCommands::handleArrowKey);
    connect(&m_p.tvwFavoris, &FeedTreeView::nodeDropped, this, &TreeCommands::handleDrop);
}

void TreeCommands::enableButtons(const FeedNodePtr &node)
{
    const bool feed = node->image() == NodeImage::Feed;
    const bool folder = node->image() == NodeImage::Folder;
    m_p.cToolbar1.setButtonEnabled(MainToolbar::Actualiser, feed);
    m_p.cToolbar1.setButtonEnabled(MainToolbar::Supprimer, feed || folder);
    m_p.cToolbar1.setButtonEnabled(MainToolbar::Proprietes, feed);
    m_p.cToolbar1.setButtonEnabled(MainToolbar::Ajouter, false);
}

void TreeCommands::openByUser(const FeedNodePtr &node)
{
    m_p.current.addressFeedUnsaved = false;
    m_p.opener.openFeedNode(node);
}

void TreeCommands::handleNodeClick(const FeedNodePtr &node)
{
    enableButtons(node);
    if (node->image() == NodeImage::Feed) {
        m_p.current.addressFeedUnsaved = false;
        m_p.window.enableSendMailButton(false);
        m_p.opener.openFeedNode(node);
    } else if (node->image() == NodeImage::Folder) {
        m_p.window.navigate(m_p.homePage);
        m_p.window.emptyItemList();
        m_p.window.enableSendMailButton(false);
    }
}

void TreeCommands::handleNodeRightClick(const FeedNodePtr &node, const QPoint &globalPosition)
{
    enableButtons(node);
    const bool feed = node->image() == NodeImage::Feed;
    const auto enable = [this](const QString &key, bool enabled) {
        m_p.mnuTreeView.setEnabled(m_p.mnuTreeView.IndexForKey(key), enabled);
    };
    enable(QStringLiteral("mnuRafraichir"), feed);
    enable(QStringLiteral("mnuSupprimer"), feed || node->image() == NodeImage::Folder);
    enable(QStringLiteral("mnuProprietes"), feed);
    const FeedNodePtr selected = m_p.tree.selected();
    if (!selected || selected->key() != node->key()) {
        openByUser(node);
        m_p.tree.select(node);
    }
    m_p.mnuTreeView.ShowPopupMenu(globalPosition + QPoint(5, 5));
}

void TreeCommands::handleArrowKey(const FeedNodePtr &node)
{
    openByUser(node);
}

void TreeCommands::handleDrop(const FeedNodePtr &target, bool insertAbove)
{
    const FeedNodePtr dragged = m_p.tvwFavoris.draggedNode();
    if (dragged)
        m_p.catalogue.moveFeed(dragged, target, insertAbove);
}

void TreeCommands::deleteSelectedNode(const FeedNodePtr &node)
{
    if (node->image() == NodeImage::Folder) {
        const Messages::Answer answer = m_p.messages.show(
            {QStringLiteral("Êtes-vous sur de vouloir supprimer ce dossier et tout son contenu ?"),
             QStringLiteral("Supprimer dossier"), Message::Icon::Information, Message::Buttons::YesNo});
        if (answer != Messages::Answer::Yes)
            return;
        m_p.catalogue.deleteCatalogueFolder(node);
        m_p.tree.remove(node);
    } else if (node->image() == NodeImage::Feed) {
        m_p.catalogue.deleteCatalogueFeed(node->key());
        m_p.tree.remove(node);
        m_p.window.emptyItemList();
        m_p.window.navigate(m_p.homePage);
    }
}

void TreeCommands::createFolder(const FeedNodePtr &node)
{
    const QString name =
        m_p.inputBox(QStringLiteral("Entrez un nom pour le nouveau dossier"), QStringLiteral("Nouveau dossier"));
    if (!name.isEmpty())
        m_p.catalogue.createFolder(node, name);
}

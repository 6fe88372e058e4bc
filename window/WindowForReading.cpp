// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/WindowForReading.h"

#include "controls/cPopupMenu.h"
#include "controls/cToolbar.h"
#include "platform/Literals.h"
#include "reading/ItemListView.h"
#include "window/MainMenus.h"

#include <QCursor>

void WindowForReading::enableBrowserButton(const QString &key, bool enabled)
{
    m_parts.tlbBrowser.setButtonEnabled(key, enabled);
}

void WindowForReading::setAttachmentEntry(const QString &caption, const QString &key)
{
    cPopupMenu &menu = m_parts.menus.mnuAttachment;
    menu.Clear();
    cPopupMenu::Item item;
    // The name comes from a feed: it makes neither a shortcut nor a mnemonic.
    item.caption = QString(caption).replace(u'\t', u' ').replace("&"_L1, "&&"_L1);
    item.key = key;
    menu.AddItem(item);
}

QPoint WindowForReading::menuPlace() const
{
    const QPoint pointer = QCursor::pos();
    if (m_parts.lvwItems.rect().contains(m_parts.lvwItems.mapFromGlobal(pointer)))
        return pointer;
    // Asked for with the keyboard while the pointer is elsewhere.
    const QRect row = m_parts.lvwItems.visualRect(m_parts.lvwItems.currentIndex());
    return m_parts.lvwItems.viewport()->mapToGlobal(row.isValid() ? row.bottomLeft() : QPoint());
}

void WindowForReading::showItemMenu(bool canMarkRead, bool canMarkUnread)
{
    cPopupMenu &menu = m_parts.menus.mnuPopUpListView;
    menu.setEnabled(menu.IndexForKey(u"mnuPopLvwMarkAsRead"_s), canMarkRead);
    menu.setEnabled(menu.IndexForKey(u"mnuPopLvwMarkAsUnread"_s), canMarkUnread);
    menu.ShowPopupMenu(menuPlace());
}

void WindowForReading::showColumnMenu()
{
    m_parts.menus.mnuPopUpListViewHeader.ShowPopupMenu(menuPlace());
}

// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/cPopupMenu.h"

#include "controls/ImageList.h"
#include "controls/OfficeXpStyle.h"

#include <QKeySequence>

namespace {

/// The shortcut behind the tab of a caption; empty when there is none or the text is no key.
QKeySequence shortcutOf(const QString &caption)
{
    const qsizetype tab = caption.indexOf(u'\t');
    if (tab < 0)
        return {};
    const QKeySequence keys = QKeySequence::fromString(caption.mid(tab + 1).trimmed(), QKeySequence::PortableText);
    for (int i = 0; i < keys.count(); ++i) {
        if (keys[static_cast<uint>(i)].key() == Qt::Key_unknown)
            return {};
    }
    return keys;
}

} // namespace

cPopupMenu::cPopupMenu(QWidget *owner, bool officeXpStyle) : m_owner(owner), m_officeXpStyle(officeXpStyle)
{
    m_menu = newMenu();
}

cPopupMenu::~cPopupMenu()
{
    delete m_menu; // with its actions and submenus
}

void cPopupMenu::setName(const QString &name)
{
    m_menu->setAccessibleName(name);
}

void cPopupMenu::setImageList(const ImageList *images)
{
    m_images = images;
    for (const Entry &entry : m_entries)
        showPicture(entry);
}

int cPopupMenu::AddItem(const Item &item)
{
    QMenu *menu = menuOf(item.parentIndex);
    if (!menu) // the owner is gone
        return -1;
    auto *action = new QAction(menu);
    if (item.caption == u"-") {
        action->setSeparator(true);
    } else {
        const QKeySequence shortcut = shortcutOf(item.caption);
        action->setText(shortcut.isEmpty() ? item.caption : item.caption.section(u'\t', 0, 0));
        action->setStatusTip(item.helpText);
        if (!shortcut.isEmpty()) {
            action->setShortcut(shortcut);
            if (m_owner)
                m_owner->addAction(action);
        }
    }
    action->setCheckable(item.checkable || item.checked);
    action->setChecked(item.checked);
    action->setEnabled(item.enabled);
    menu->addAction(action);

    const auto index = static_cast<int>(m_entries.size());
    m_entries.push_back({item, action, nullptr});
    showPicture(m_entries.back());
    connect(action, &QAction::triggered, this, [this, index] {
        const Entry *entry = entryAt(index);
        if (entry->submenu)
            return;
        // The desktop's action has toggled its mark by itself; here only the program sets it.
        entry->action->setChecked(entry->item.checked);
        Q_EMIT Click(index);
    });
    return index;
}

void cPopupMenu::Clear()
{
    // A choice may be on its way through these objects, so they end later; until then nothing of them may show or act.
    for (const Entry &entry : m_entries) {
        if (entry.action) {
            entry.action->setShortcut({});
            entry.action->disconnect(this);
            entry.action->setVisible(false);
            entry.action->deleteLater();
        }
        if (entry.submenu)
            entry.submenu->deleteLater();
    }
    for (const Entry &entry : m_entries) {
        if (entry.action && entry.item.parentIndex < 0 && m_menu)
            m_menu->removeAction(entry.action);
    }
    m_entries.clear();
}

int cPopupMenu::Count() const
{
    return static_cast<int>(m_entries.size());
}

int cPopupMenu::IndexForKey(const QString &key) const
{
    for (int i = 0; i < Count(); ++i) {
        if (entryAt(i)->item.key == key)
            return i;
    }
    return -1;
}

QString cPopupMenu::ItemKey(int index) const
{
    const Entry *entry = entryAt(index);
    return entry ? entry->item.key : QString();
}

qint32 cPopupMenu::ItemData(int index) const
{
    const Entry *entry = entryAt(index);
    return entry ? entry->item.itemData : 0;
}

bool cPopupMenu::Checked(int index) const
{
    const Entry *entry = entryAt(index);
    return entry && entry->item.checked;
}

void cPopupMenu::setChecked(int index, bool checked)
{
    if (!entryAt(index))
        return;
    Entry &entry = m_entries[static_cast<std::size_t>(index)];
    entry.item.checked = checked;
    if (!entry.action)
        return;
    if (checked)
        entry.action->setCheckable(true);
    entry.action->setChecked(checked);
}

void cPopupMenu::setEnabled(int index, bool enabled)
{
    if (!entryAt(index))
        return;
    Entry &entry = m_entries[static_cast<std::size_t>(index)];
    entry.item.enabled = enabled;
    if (entry.action)
        entry.action->setEnabled(enabled);
}

void cPopupMenu::setOfficeXpStyle(bool officeXpStyle)
{
    m_officeXpStyle = officeXpStyle;
    QStyle *style = officeXpStyle ? OfficeXpStyle::shared() : nullptr;
    if (m_menu)
        m_menu->setStyle(style);
    for (const Entry &entry : m_entries) {
        if (entry.submenu)
            entry.submenu->setStyle(style);
    }
}

void cPopupMenu::ShowPopupMenu(const QPoint &globalPosition)
{
    if (m_menu)
        m_menu->exec(globalPosition);
}

QList<QAction *> cPopupMenu::topLevelActions() const
{
    QList<QAction *> actions;
    for (const Entry &entry : m_entries) {
        if (entry.item.parentIndex < 0 && entry.action)
            actions.append(entry.action);
    }
    return actions;
}

QAction *cPopupMenu::action(int index) const
{
    const Entry *entry = entryAt(index);
    return entry ? entry->action.data() : nullptr;
}

const cPopupMenu::Entry *cPopupMenu::entryAt(int index) const
{
    return index >= 0 && index < Count() ? &m_entries[static_cast<std::size_t>(index)] : nullptr;
}

QMenu *cPopupMenu::menuOf(int parentIndex)
{
    if (!entryAt(parentIndex))
        return m_menu;
    Entry &parent = m_entries[static_cast<std::size_t>(parentIndex)];
    if (!parent.submenu) {
        parent.submenu = newMenu();
        parent.submenu->setTitle(parent.action->text());
        parent.action->setMenu(parent.submenu);
    }
    return parent.submenu;
}

QMenu *cPopupMenu::newMenu() const
{
    // Submenus are the first menu's children.
    auto *menu = new QMenu(m_menu ? m_menu.data() : m_owner.data());
    if (m_officeXpStyle)
        menu->setStyle(OfficeXpStyle::shared());
    return menu;
}

void cPopupMenu::showPicture(const Entry &entry) const
{
    if (entry.action && !entry.action->isSeparator())
        entry.action->setIcon(m_images ? m_images->icon(entry.item.iconIndex) : QIcon());
}

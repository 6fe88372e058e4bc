// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/ToolbarRow.h"

#include "controls/ImageList.h"
#include "controls/ToolbarButton.h"

#include <algorithm>

namespace {

constexpr int separatorWidth = 8;

int widthOf(const ToolbarRow::Entry &entry)
{
    return entry.button ? entry.button->sizeHint().width() : separatorWidth;
}

bool canHaveFocus(const ToolbarRow::Entry &entry)
{
    return entry.button && entry.shown && entry.button->isEnabled();
}

} // namespace

QWidget *ToolbarRow::Entry::widget() const
{
    return button ? static_cast<QWidget *>(button) : separator;
}

const ToolbarRow::Entry *ToolbarRow::at(int index) const
{
    return index >= 0 && index < static_cast<int>(m_entries.size()) ? &m_entries[static_cast<std::size_t>(index)]
                                                                    : nullptr;
}

int ToolbarRow::indexOf(const QString &key) const
{
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
        if (m_entries[i].button && m_entries[i].key == key)
            return static_cast<int>(i);
    }
    return -1;
}

void ToolbarRow::clear()
{
    for (const Entry &entry : m_entries)
        delete entry.widget();
    m_entries.clear();
}

void ToolbarRow::dress(const ImageList *images, bool captions) const
{
    for (const Entry &entry : m_entries) {
        if (!entry.button)
            continue;
        entry.button->setIcon(images ? images->icon(entry.image) : QIcon());
        if (images)
            entry.button->setIconSize(QSize(images->size(), images->size()));
        const bool text = captions || !images || entry.image < 0;
        entry.button->setToolButtonStyle(!text             ? Qt::ToolButtonIconOnly
                                         : entry.image < 0 ? Qt::ToolButtonTextOnly
                                                           : Qt::ToolButtonTextUnderIcon);
    }
}

void ToolbarRow::setStyle(QStyle *style) const
{
    for (const Entry &entry : m_entries)
        entry.widget()->setStyle(style);
}

int ToolbarRow::idealWidth() const
{
    int width = 0;
    for (const Entry &entry : m_entries)
        width += widthOf(entry);
    return width;
}

int ToolbarRow::idealHeight() const
{
    int height = 0;
    for (const Entry &entry : m_entries)
        height = std::max(height, entry.button ? entry.button->sizeHint().height() : 0);
    return height;
}

bool ToolbarRow::layOut(const QSize &room)
{
    int x = 0;
    bool overflowing = false;
    for (Entry &entry : m_entries) {
        const int width = widthOf(entry);
        // Behind the first one that doesn't fit nothing is shown, so that the overflow menu is the row's end.
        overflowing = overflowing || x + width > room.width();
        entry.shown = !overflowing;
        const int height = entry.button ? std::min(entry.button->sizeHint().height(), room.height()) : room.height();
        entry.widget()->setGeometry(x, (room.height() - height) / 2, width, height);
        entry.widget()->setVisible(entry.shown);
        x += width;
    }
    // A separator that has nothing behind it any more would only be a stray line.
    for (std::size_t i = m_entries.size(); overflowing && i-- > 0;) {
        if (!m_entries[i].shown)
            continue;
        if (m_entries[i].button)
            break;
        m_entries[i].separator->hide();
    }
    updateTabStop();
    return overflowing;
}

void ToolbarRow::updateTabStop(const QToolButton *wanted) const
{
    const Entry *stop = nullptr;
    for (const Entry &entry : m_entries) {
        if (!canHaveFocus(entry))
            continue;
        const bool holder = wanted ? entry.button == wanted : entry.button->focusPolicy() == Qt::TabFocus;
        if (!stop || holder)
            stop = &entry;
        if (holder)
            break;
    }
    for (const Entry &entry : m_entries) {
        if (entry.button)
            entry.button->setFocusPolicy(&entry == stop ? Qt::TabFocus : Qt::NoFocus);
    }
}

void ToolbarRow::moveFocus(const QToolButton *button, int direction) const
{
    const auto count = static_cast<int>(m_entries.size());
    int from = 0;
    while (from < count && m_entries[static_cast<std::size_t>(from)].button != button)
        ++from;
    for (int step = 1; step < count; ++step) {
        const int next = ((from + direction * step) % count + count) % count;
        const Entry &entry = m_entries[static_cast<std::size_t>(next)];
        if (canHaveFocus(entry)) {
            entry.button->setFocus(Qt::TabFocusReason);
            return;
        }
    }
}

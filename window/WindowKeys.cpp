// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/WindowKeys.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QShortcut>
#include <QWidget>

#include <algorithm>

namespace {

void openContextMenu(QWidget &focused)
{
    const QPoint place = focused.inputMethodQuery(Qt::ImCursorRectangle).toRect().center();
    QContextMenuEvent menu(QContextMenuEvent::Keyboard, place, focused.mapToGlobal(place));
    QCoreApplication::sendEvent(&focused, &menu);
}

/// Whether that key is the shortcut of an entry in the menus of the widget's window.
bool belongsToMenu(const QWidget &widget, const QKeyEvent &key)
{
    const QKeySequence pressed(key.keyCombination());
    const QList<QAction *> entries = widget.window()->actions();
    return std::any_of(entries.begin(), entries.end(),
                       [&pressed](const QAction *entry) { return entry->shortcut() == pressed; });
}

} // namespace

WindowKeys::WindowKeys(QWidget &form, std::vector<QWidget *> panes) : m_panes(std::move(panes))
{
    const auto *forth = new QShortcut(Qt::Key_F6, &form);
    const auto *back = new QShortcut(Qt::SHIFT | Qt::Key_F6, &form);
    connect(forth, &QShortcut::activated, this, [this] { goToPane(1); });
    connect(back, &QShortcut::activated, this, [this] { goToPane(-1); });
    qApp->installEventFilter(this);
}

void WindowKeys::goToPane(int direction)
{
    const auto count = static_cast<int>(m_panes.size());
    const QWidget *focused = QApplication::focusWidget();
    int from = direction > 0 ? -1 : count; // from outside the panes to the first, or the last
    for (int i = 0; i < count; ++i) {
        const QWidget *pane = m_panes[static_cast<std::size_t>(i)];
        if (focused && (pane == focused || pane->isAncestorOf(focused)))
            from = i;
    }
    for (int step = 1; step <= count; ++step) {
        QWidget *pane = m_panes[static_cast<std::size_t>((from + direction * step + 2 * count) % count)];
        if (pane->isVisible()) {
            pane->setFocus(Qt::ShortcutFocusReason);
            return;
        }
    }
}

bool WindowKeys::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride && watched->isWidgetType() &&
        belongsToMenu(*static_cast<QWidget *>(watched), *static_cast<QKeyEvent *>(event))) {
        event->ignore();
        return true;
    }
    // A key comes to the window itself when none of the widgets in it has taken it. The engine of the page takes this
    // one, and has a menu of its own.
    if (event->type() == QEvent::KeyPress && watched->isWidgetType() && static_cast<QWidget *>(watched)->isWindow()) {
        const auto *key = static_cast<QKeyEvent *>(event);
        QWidget *focused = QApplication::focusWidget();
        if (focused && key->key() == Qt::Key_F10 && key->modifiers() == Qt::ShiftModifier) {
            openContextMenu(*focused);
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

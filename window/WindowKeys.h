// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>

#include <vector>

class QWidget;

/// Keys that belong to no single control. F6 and Shift+F6 go from pane to pane; Shift+F10 opens the context menu of
/// what has the focus, in the dialogs too, as the menu key does; and the shortcuts of a window's menus are theirs also
/// where a text box, or one in the page, has a use of its own for them: under X11 Ctrl+E would be the end of the line.
class WindowKeys : public QObject
{
    Q_OBJECT

public:
    /// `panes` are what F6 goes through, children of `form`; those that aren't in sight are passed over. Nothing is
    /// owned.
    WindowKeys(QWidget &form, std::vector<QWidget *> panes);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void goToPane(int direction);

    std::vector<QWidget *> m_panes;
};

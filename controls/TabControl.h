// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QTabWidget>

/// Tabs addressed by an index from 1 and by a key, with a page each; only the page of the selected tab is visible.
class TabControl : public QTabWidget
{
    Q_OBJECT

public:
    explicit TabControl(QWidget *parent = nullptr);

    /// Adds a tab behind the others and returns its index. The page becomes the control's. The caption is shown as it
    /// stands ("&" marks the mnemonic).
    int addTab(const QString &key, const QString &caption, QWidget *page);

    /// The index of the selected tab, from 1; 0 when there is none.
    int selectedTab() const;

    /// Selects a tab by its index from 1; an index that there isn't changes nothing.
    void selectTab(int index);

    /// The key of a tab, "" for an index that there isn't.
    QString tabKey(int index) const;

Q_SIGNALS:
    /// Another tab was selected, by the user or by selectTab().
    void TabClick(int index);
};

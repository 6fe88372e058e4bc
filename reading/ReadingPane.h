// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "core/AppSettings.h"
#include "engine/CurrentFeed.h"
#include "reading/PageWriter.h"

#include <QObject>
#include <QTimer>

class BrowserPane;
class ItemListView;
class ReadingWindow;

/// What happens between the item list and the browser pane: showing pages, marking, deleting, and the delay after which
/// an item on show counts as read. Rows are told by key, the item's index in the feed on show, never by their position.
class ReadingPane : public QObject
{
    Q_OBJECT

public:
    /// Nothing is owned.
    ReadingPane(const PageWriter &pages, CurrentFeed &current, const AppSettings &settings, ItemListView &lvwItems,
                BrowserPane &browser, ReadingWindow &window, QObject *parent = nullptr);

    /// Rebuilds the list from the feed on show, in document order, whatever header arrow stands on show; shows the
    /// channel's page unless an update runs. Throws the RunTimeErrors of the dates.
    void FillItemList();

    void ShowChannelPage();
    void ShowItemPage(qint16 index);

    /// Builds the item's mail text and opens the mail dialog.
    void sendItemByMail(qint16 index);

    /// Marks the selected row as unread or read. Without a selection nothing happens.
    void MarkSelectedItem(bool unread);

    /// Deletes the selected row's item and saves the feed at once.
    void DeleteSelectedItem();

    /// The key of the selected row as a number; -1 without a selection.
    int selectedItem() const;

private:
    void handleRowClicked(int row, int column, Qt::MouseButton button);
    void handleDeleteKey();
    void handleUpKey();
    void handleDownKey();
    void handleReadDelayOver();

    const PageWriter &m_pages;
    CurrentFeed &m_current;
    const AppSettings &m_settings;
    ItemListView &m_lvwItems;
    BrowserPane &m_browser;
    ReadingWindow &m_window;
    QTimer m_timRead;
};

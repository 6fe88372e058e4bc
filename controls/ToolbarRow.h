// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QSize>
#include <QString>

#include <vector>

class ImageList;
class QStyle;
class QToolButton;
class QWidget;
class ToolbarButton;

/// The buttons and separators of a toolbar in their order: what room they take, which of them fit into it, and which
/// one the Tab key reaches. Measures are pixels.
class ToolbarRow final
{
public:
    struct Entry
    {
        QString key;
        QString tip;
        int image = -1;
        ToolbarButton *button = nullptr; ///< null for a separator
        QWidget *separator = nullptr;
        bool shown = true; ///< it fits into the present width

        QWidget *widget() const;
    };

    const std::vector<Entry> &entries() const { return m_entries; }

    /// The entry at that index; null when there is none.
    const Entry *at(int index) const;

    /// The index of the button with that key; -1 when there is none.
    int indexOf(const QString &key) const;

    /// Behind the others. Its widget is a child of the toolbar.
    void add(const Entry &entry) { m_entries.push_back(entry); }

    /// Deletes all entries and their widgets.
    void clear();

    /// Pictures and captions, or either alone, as there are.
    void dress(const ImageList *images, bool captions) const;
    void setStyle(QStyle *style) const;

    int idealWidth() const;
    int idealHeight() const;

    /// Places the entries in a toolbar of that size, and hides what doesn't fit. True when something doesn't.
    bool layOut(const QSize &room);

    /// One button of the row is a stop of the Tab key: `wanted`, the one that had the focus last, or the first one that
    /// can have it.
    void updateTabStop(const QToolButton *wanted = nullptr) const;

    /// Moves the focus from `button` over the next ones, by 1 or -1; beyond the end it begins at the other end.
    void moveFocus(const QToolButton *button, int direction) const;

private:
    std::vector<Entry> m_entries;
};

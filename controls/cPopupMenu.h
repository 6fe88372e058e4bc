// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QMenu>
#include <QObject>
#include <QPointer>
#include <QString>

#include <vector>

class ImageList;

/// A pop-up menu whose entries are addressed by index and by key. Entries may stand below others (a submenu). The
/// caption "-" makes a separator; "&" marks the mnemonic; a text behind a tab is the shortcut, which works as long as
/// the menu's owner (or a toolbar built from the menu) is in an active window.
class cPopupMenu : public QObject
{
    Q_OBJECT

public:
    /// `owner` is the window that the menu and its shortcuts belong to.
    cPopupMenu(QWidget *owner, bool officeXpStyle);
    ~cPopupMenu() override;

    /// What AddItem() takes, beside the caption and the key.
    struct Item
    {
        QString caption;
        QString key;
        int parentIndex = -1; ///< the entry below which it stands; -1 for the menu itself
        int iconIndex = -1;   ///< picture of the image list; -1 for none
        qint32 itemData = 0;
        bool checkable = false;
        bool checked = false;
        bool enabled = true;
        QString helpText;
    };

    /// How screen readers call it.
    void setName(const QString &name);

    void setImageList(const ImageList *images);

    /// Adds an entry behind the others of its parent and returns its index, counted from 0 over the whole menu in order
    /// of adding; -1 when the owner is gone.
    int AddItem(const Item &item);

    /// Takes all entries out. Allowed from a handler of Click().
    void Clear();

    int Count() const;

    /// The index of the entry with that key; -1 when there is none.
    int IndexForKey(const QString &key) const;

    /// Of an index that there isn't: "", 0 and false; setting does nothing then. A check mark is set by the program
    /// alone, a choice doesn't toggle it.
    QString ItemKey(int index) const;
    qint32 ItemData(int index) const;
    bool Checked(int index) const;
    void setChecked(int index, bool checked);
    void setEnabled(int index, bool enabled);

    /// Office XP drawing of this menu and its submenus, or the standard one. Takes effect at once.
    void setOfficeXpStyle(bool officeXpStyle);

    /// Shows the menu at a point of the screen and returns when it is closed. A click is reported by Click().
    void ShowPopupMenu(const QPoint &globalPosition);

    /// The top-level entries as actions (with submenus), for a menu bar.
    QList<QAction *> topLevelActions() const;

    /// The menu itself, for a tray icon or a button. Owned by this object.
    QMenu *menu() const { return m_menu; }

    /// The action of an entry; owned by this object.
    QAction *action(int index) const;

Q_SIGNALS:
    /// An entry was chosen, by mouse, keyboard or shortcut.
    void Click(int index);

private:
    struct Entry
    {
        Item item;
        QPointer<QAction> action;
        QPointer<QMenu> submenu;
    };
    const Entry *entryAt(int index) const;
    QMenu *menuOf(int parentIndex);
    QMenu *newMenu() const;
    void showPicture(const Entry &entry) const;

    QPointer<QWidget> m_owner;
    QPointer<QMenu> m_menu; // the owner's child: it may go before this object
    std::vector<Entry> m_entries;
    const ImageList *m_images = nullptr;
    bool m_officeXpStyle;
};

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "core/SettingsFile.h"
#include "window/MainMenus.h"
#include "window/RebarBands.h"

#include <QObject>
#include <QString>

#include <vector>

class AddressBand;
class BrowserPane;
class FeedTreeView;
class ItemListView;
class Messages;
class ProgressBar;
class SplitBar;
class StatusBar;
class cToolbar;
class cToolbarHost;
struct LongLived;

/// The frame of the main window: its menus and controls, how they are named and placed, and the two switches of their
/// look. What they do is connected elsewhere.
class MainFrame : public QObject
{
    Q_OBJECT

public:
    /// What the frame is made of. Nothing is owned.
    struct Parts
    {
        QWidget &form; ///< the window that the frame fills; it becomes the parent of all controls
        const LongLived &longLived;
        ScreenScale scale;
        Messages &messages;
    };

    /// Makes the menus, and the controls, empty.
    explicit MainFrame(Parts parts);

    /// Gives bars, bands, columns and panes what the settings say, and places them.
    void build();

    /// Places bands, panes and status bar for the form's present size. Does nothing before build(), nor once the bands
    /// were taken or while the rebar isn't docked along the top.
    void recalcLayout();

    /// The panes, in the order in which the keyboard goes through them.
    std::vector<QWidget *> panes() const;

    /// Makes Tab go through the panes in that order. To be called again when the page may have got other widgets.
    void setPaneOrder();

    /// "mnuOffice" or "mnuStandard".
    void setStyle(const QString &key);

    /// "mnuTBGrande" or "mnuTBPetite".
    void setToolbarSize(const QString &key);

    /// The text of the status panel "state".
    void setStatusText(const QString &text);

    /// The text of the last status panel, "glue": how far something long has come.
    void setCountText(const QString &text);

    /// Shows the column of that number, as wide as it was or as it is by default, or hides it.
    void showColumn(int column, bool shown);

    /// The layout of the bands as text; the bands are gone then.
    QString takeBandLayout();

    /// Place and size of the form and the widths of the columns.
    WindowGeometry geometryInTwips() const;

    // The controls, by their names. They are children of the form.
    cToolbar *const tbrMenu;
    cToolbar *const cToolbar1;
    cToolbar *const cToolbar2; ///< holds no buttons
    AddressBand *const fraToolbar;
    FeedTreeView *const tvwFavoris;
    SplitBar *const picHorizontalSplit;
    ItemListView *const lvwItems;
    SplitBar *const picVerticalSplit;
    cToolbarHost *const cToolbarHost1;
    cToolbar *const tlbBrowser;
    BrowserPane *const WebBrowser1;
    StatusBar *const stabPrinc;
    ProgressBar *const prbChargement;

    MainMenus menus;

private:
    void nameControls();
    void buildStatusBar();
    void placeProgressBar();
    void setHostHeight();
    void handleHorizontalBar();
    void handleVerticalBar();

    Parts m_parts;
    RebarBands m_bands;
    bool m_built = false;
    bool m_bandsTaken = false;
};

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>
#include <QString>

class QWidget;
class cReBar;
class cToolbar;

/// The rebar `cReBar1` across the top with its three bands, "MenuBar", "ToolBar" and "StyleBar".
class RebarBands : public QObject
{
    Q_OBJECT

public:
    /// What the bands hold. Nothing is owned. The chevron of "StyleBar" leads to `cToolbar2`, which has no buttons.
    struct Parts
    {
        QWidget *form;
        cToolbar *tbrMenu;
        cToolbar *cToolbar1;
        cToolbar *cToolbar2;
        QWidget *fraToolbar;
    };

    explicit RebarBands(Parts parts, QObject *parent = nullptr);

    /// Creates the rebar with its bands as they are by default.
    void create();

    /// Destroys the rebar and makes it anew, with the bands as `layout` has them; a text that can't be used leaves
    /// them as create() makes them.
    void restoreBands(const QString &layout);

    /// The band layout as text.
    QString layout() const;

    void removeAllBands();

    /// The buttons of the band "ToolBar" have another size: gives the band that minimum height, and the width that
    /// shows them all.
    void fitToolbar(int minimumHeight);

    /// Gives the rebar that width, lets it lay its bands out, and returns its height in pixels.
    int resize(int width);

    /// The height of all rows in pixels.
    int height() const;

    /// Where the rebar is docked; 0 is along the top.
    int position() const;

Q_SIGNALS:
    void heightChanged();

private:
    void newRebar(bool withMinimumHeights);
    void handleChevron(int id, double left, double top, double right, double bottom);

    Parts m_parts;
    cReBar *m_cReBar1 = nullptr;
};

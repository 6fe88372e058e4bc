// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "controls/BandLayout.h"

#include <QPoint>

/// Moves bands about, by mouse or by menu, without any widget: which rows they stand in and what widths they want
/// thereby. All measures are pixels.
class BandMoves final
{
public:
    struct Band
    {
        QRect rect;
        int width = 0;    ///< what it wants; at first what it has
        int minWidth = 0; ///< below which no move brings it
        int fullWidth = 0;
        bool fixed = false;
    };

    /// `rows` are changed in place; `bands` are by band number, and each stands in exactly one row.
    BandMoves(BandLayout::Rows &rows, std::vector<Band> bands);

    /// The bands with the widths that the moves have given them.
    const std::vector<Band> &bands() const { return m_bands; }

    /// Lets the band that the mouse holds, `grip` pixels from its left edge, follow to `position`: within its row, into
    /// another, or into a row of its own beyond the edges of a rebar that is `height` high.
    void drag(int number, int grip, const QPoint &position, int height);

    /// Gives the band the width that shows all of its child, in a row that is `room` wide; its neighbours give way, the
    /// last ones first and none below its minimum.
    void showAll(int number, int room);

    bool canGoLeft(int number) const;
    bool canGoRight(int number) const;
    bool canGoUp(int number) const;
    bool canGoDown(int number) const;

    /// Changes places with the neighbour; nothing where there is none.
    void goLeft(int number);
    void goRight(int number);

    /// Goes into the next row above or below, from `x` on, or into a row of its own where there is none.
    void goUp(int number, int x);
    void goDown(int number, int x);

private:
    struct Place
    {
        std::size_t row;
        std::size_t column;
    };

    Band &band(int number) { return m_bands[static_cast<std::size_t>(number)]; }
    Place placeOf(int number) const;
    bool isAlone(const Place &place) const { return m_rows[place.row].size() == 1; }
    void removeFromRow(int number);
    void moveToNewRow(int number, std::size_t row);
    void moveToRowOf(int number, int neighbour, int x);
    void dragWithinRow(int number, int x);

    BandLayout::Rows &m_rows;
    std::vector<Band> m_bands;
};

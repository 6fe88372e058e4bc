#pragma once

#include "controls/BandLayout.h"
#include "controls/OfficeXpStyle.h"
#include "controls/Twips.h"
#include "controls/cReBar.h"
#include "controls/cToolbar.h"

#include <QPointer>
#include <QToolButton>

#include <algorithm>

// Of the rebar's own source files only.

/// Pixels.
namespace ReBarMeasures {

inline constexpr int gripperWidth = 10;
inline constexpr int chevronWidth = 16;
inline constexpr int captionGap = 4;
inline constexpr int rowGap = 2;
inline constexpr int columnGap = 2;
inline constexpr int smallestChild = 32; // of a child that can show less than all of itself
inline constexpr int dragSlack = 8;      // beyond the edge of the rebar before a band gets a row of its own

} // namespace ReBarMeasures

struct cReBar::Private
{
    struct Band
    {
        QPointer<QWidget> child;
        QPointer<QWidget> owner; ///< the child's parent before it came here
        QString caption;
        QString data;
        bool fixed = false;
        int width = 0;          ///< of the whole band, as it was last wanted
        int minChildWidth = -1; ///< -1: what the child itself needs
        int minHeight = 0;
        QToolButton *chevron = nullptr;
        QRect rect;
    };

    explicit Private(cReBar *rebar) : q(rebar) {}

    cReBar *q;
    std::vector<Band> bands; ///< in order of adding
    BandLayout::Rows rows;
    int height = 0;
    bool layingOut = false;

    int dragged = -1; ///< number of the band that the mouse holds
    int grip = 0;     ///< where in the band

    Band &band(int number) { return bands[static_cast<std::size_t>(number)]; }
    const Band &band(int number) const { return bands[static_cast<std::size_t>(number)]; }
    bool has(int number) const { return number >= 0 && number < static_cast<int>(bands.size()); }

    int headWidth(const Band &band) const
    {
        const int gripper = band.fixed ? 2 : ReBarMeasures::gripperWidth;
        return band.caption.isEmpty()
                   ? gripper
                   : gripper + q->fontMetrics().horizontalAdvance(band.caption) + 2 * ReBarMeasures::captionGap;
    }

    int idealChildWidth(const Band &band) const
    {
        if (!band.child)
            return 0;
        if (const auto *toolbar = qobject_cast<const cToolbar *>(band.child))
            return toolbar->idealWidth();
        return band.child->minimumSizeHint().expandedTo(band.child->minimumSize()).width();
    }

    int minChildWidth(const Band &band) const
    {
        const int ideal = idealChildWidth(band);
        return std::min(ideal, band.minChildWidth >= 0 ? std::max(ReBarMeasures::smallestChild, band.minChildWidth)
                                                       : ReBarMeasures::smallestChild);
    }

    int minWidth(const Band &band) const { return headWidth(band) + minChildWidth(band) + ReBarMeasures::columnGap; }

    int childHeight(const Band &band) const
    {
        return band.child ? std::max(band.child->sizeHint().height(), band.child->minimumHeight()) : 0;
    }

    /// Row and place in it of a band.
    std::pair<std::size_t, std::size_t> find(int number) const
    {
        for (std::size_t row = 0; row < rows.size(); ++row) {
            const auto found = std::find(rows[row].begin(), rows[row].end(), number);
            if (found != rows[row].end())
                return {row, static_cast<std::size_t>(found - rows[row].begin())};
        }
        return {rows.size(), 0};
    }

    void layOut()
    {
        if (layingOut)
            return;
        layingOut = true;
        std::vector<BandLayout::Wish> wishes;
        for (const Band &band : bands)
            wishes.push_back({band.width, minWidth(band), std::max(band.minHeight, childHeight(band))});
        const std::vector<QRect> places =
            BandLayout::place(rows, wishes, q->width(), ReBarMeasures::rowGap, ReBarMeasures::columnGap);
        int bottom = 0;
        for (std::size_t i = 0; i < bands.size(); ++i) {
            bands[i].rect = places[i];
            bottom = std::max(bottom, places[i].top() + places[i].height());
            placeChild(bands[i]);
        }
        layingOut = false;
        q->update();
        if (q->height() != bottom)
            q->resize(q->width(), bottom);
        if (height == bottom)
            return;
        height = bottom;
        q->updateGeometry();
        Q_EMIT q->HeightChanged(height);
    }

    void placeChild(Band &band)
    {
        if (!band.child)
            return;
        QRect room = band.rect;
        room.setLeft(room.left() + headWidth(band));
        const bool cut = room.width() < idealChildWidth(band);
        band.chevron->setVisible(cut);
        if (cut) {
            band.chevron->setGeometry(room.right() - ReBarMeasures::chevronWidth + 1, room.top(),
                                      ReBarMeasures::chevronWidth, room.height());
            room.setRight(room.right() - ReBarMeasures::chevronWidth);
        }
        const int tall = std::min(room.height(), childHeight(band));
        room = QRect(room.left(), room.top() + (room.height() - tall) / 2, std::max(0, room.width()), tall);
        band.child->setGeometry(room);
    }

    /// The band whose gripper is at `position`; -1 for none.
    int gripperAt(const QPoint &position) const
    {
        for (std::size_t i = 0; i < bands.size(); ++i) {
            if (bands[i].rect.contains(position) && position.x() < bands[i].rect.left() + headWidth(bands[i]))
                return static_cast<int>(i);
        }
        return -1;
    }

    /// From now on the bands want the widths that they have.
    void keepWidths()
    {
        for (Band &band : bands)
            band.width = band.rect.width();
    }

    // What follows moves bands; it is written in cReBarMoves.cpp.

    void removeFromRow(int number);

    /// Puts a band into a row of its own before the row `row` (counted before the band is taken out).
    void moveToNewRow(int number, std::size_t row);

    /// Puts a band into the row of the band `neighbour`: behind the band that stands at `x`, which gives way from there
    /// on, or before the whole row where `x` is at its beginning.
    void moveToRowOf(int number, int neighbour, int x);

    /// Moves the left edge of a band within its row to `x`.
    void dragWithinRow(int number, int x);

    /// Lets the band that the mouse holds follow it.
    void drag(const QPoint &position);

    /// The moves of a band as a menu, for who doesn't drag.
    void showMoves(int number, const QPoint &globalPosition);

    static void dressChevron(const Band &band)
    {
        const auto *toolbar = qobject_cast<const cToolbar *>(band.child);
        const bool officeXp = toolbar && toolbar->drawStyle() == DrawStyle::OfficeXp;
        band.chevron->setStyle(officeXp ? OfficeXpStyle::shared() : nullptr);
    }

    void pushChevron(int number)
    {
        const QRectF rect = band(number).chevron->geometry();
        const double perX = Twips::perPixelX(q);
        const double perY = Twips::perPixelY(q);
        Q_EMIT q->ChevronPushed(number + 1, rect.left() * perX, rect.top() * perY, rect.right() * perX,
                                rect.bottom() * perY);
    }

    /// The rebar is drawn as its toolbars are.
    QStyle *drawingStyle() const
    {
        for (const Band &band : bands) {
            if (qobject_cast<const cToolbar *>(band.child))
                return band.child->style();
        }
        return q->style();
    }
};

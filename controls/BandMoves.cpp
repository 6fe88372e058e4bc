// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/BandMoves.h"

#include "controls/ReBarMeasures.h"

#include <algorithm>
#include <utility>

using namespace ReBarMeasures;

BandMoves::BandMoves(BandLayout::Rows &rows, std::vector<Band> bands) : m_rows(rows), m_bands(std::move(bands)) {}

BandMoves::Place BandMoves::placeOf(int number) const
{
    for (std::size_t row = 0; row < m_rows.size(); ++row) {
        const auto found = std::find(m_rows[row].begin(), m_rows[row].end(), number);
        if (found != m_rows[row].end())
            return {row, static_cast<std::size_t>(found - m_rows[row].begin())};
    }
    return {m_rows.size(), 0};
}

void BandMoves::removeFromRow(int number)
{
    const Place place = placeOf(number);
    std::vector<int> &row = m_rows[place.row];
    row.erase(row.begin() + static_cast<std::ptrdiff_t>(place.column));
    if (row.empty())
        m_rows.erase(m_rows.begin() + static_cast<std::ptrdiff_t>(place.row));
}

/// Puts a band into a row of its own before the row `row` (counted before the band is taken out).
void BandMoves::moveToNewRow(int number, std::size_t row)
{
    const Place from = placeOf(number);
    const bool alone = isAlone(from);
    removeFromRow(number);
    if (alone && from.row < row)
        --row;
    m_rows.insert(m_rows.begin() + static_cast<std::ptrdiff_t>(row), std::vector<int>{number});
}

/// Puts a band into the row of the band `neighbour`: behind the band that stands at `x`, which gives way from there on,
/// or before the whole row where `x` is at its beginning.
void BandMoves::moveToRowOf(int number, int neighbour, int x)
{
    removeFromRow(number);
    std::vector<int> &row = m_rows[placeOf(neighbour).row];
    const auto next = std::find_if(row.begin(), row.end(),
                                   [this, x](int other) { return x < band(other).rect.left() + 2 * gripperWidth; });
    Band &moved = band(number);
    moved.width = std::max(moved.minWidth, moved.fullWidth);
    if (next != row.begin()) {
        Band &before = band(*std::prev(next));
        const int right = before.rect.left() + before.rect.width();
        moved.width = std::max(moved.minWidth, std::min(moved.width, right - x));
        before.width = std::max(before.minWidth, x - before.rect.left());
    }
    row.insert(next, number);
}

/// Moves the left edge of a band within its row to `x`.
void BandMoves::dragWithinRow(int number, int x)
{
    const Place place = placeOf(number);
    std::vector<int> &row = m_rows[place.row];
    const std::size_t column = place.column;
    if (column + 1 < row.size() && !band(row[column + 1]).fixed && x > band(row[column + 1]).rect.center().x()) {
        std::swap(row[column], row[column + 1]);
        return;
    }
    if (column == 0)
        return;
    Band &before = band(row[column - 1]);
    if (x < before.rect.left()) {
        if (!before.fixed)
            std::swap(row[column], row[column - 1]);
        return;
    }
    Band &moved = band(number);
    const int right = moved.rect.left() + moved.rect.width();
    int edge = std::max(x, before.rect.left() + before.minWidth + columnGap);
    edge = std::min(edge, right - moved.minWidth);
    before.width = edge - columnGap - before.rect.left();
    moved.width = right - edge;
}

void BandMoves::drag(int number, int grip, const QPoint &position, int height)
{
    const Place place = placeOf(number);
    const bool alone = isAlone(place);
    const QRect own = band(number).rect;
    if (position.y() < -dragSlack) {
        if (!(alone && place.row == 0))
            moveToNewRow(number, 0);
    } else if (position.y() > height + dragSlack) {
        if (!(alone && place.row + 1 == m_rows.size()))
            moveToNewRow(number, m_rows.size());
    } else if (position.y() < own.top() || position.y() >= own.top() + own.height()) {
        for (const std::vector<int> &other : std::as_const(m_rows)) {
            const QRect rect = band(other.front()).rect;
            if (position.y() >= rect.top() && position.y() < rect.top() + rect.height()) {
                moveToRowOf(number, other.front(), position.x() - grip);
                break;
            }
        }
    } else {
        dragWithinRow(number, position.x() - grip);
    }
}

void BandMoves::showAll(int number, int room)
{
    band(number).width = band(number).fullWidth + columnGap;
    const std::vector<int> &row = m_rows[placeOf(number).row];
    int excess = -columnGap - room;
    for (const int other : row)
        excess += band(other).width + columnGap;
    for (auto other = row.rbegin(); other != row.rend() && excess > 0; ++other) {
        const int cut = *other == number ? 0 : std::clamp(band(*other).width - band(*other).minWidth, 0, excess);
        band(*other).width -= cut;
        excess -= cut;
    }
}

bool BandMoves::canGoLeft(int number) const
{
    return placeOf(number).column > 0;
}

bool BandMoves::canGoRight(int number) const
{
    const Place place = placeOf(number);
    return place.column + 1 < m_rows[place.row].size();
}

bool BandMoves::canGoUp(int number) const
{
    const Place place = placeOf(number);
    return place.row > 0 || !isAlone(place);
}

bool BandMoves::canGoDown(int number) const
{
    const Place place = placeOf(number);
    return place.row + 1 < m_rows.size() || !isAlone(place);
}

void BandMoves::goLeft(int number)
{
    const Place place = placeOf(number);
    if (canGoLeft(number))
        std::swap(m_rows[place.row][place.column], m_rows[place.row][place.column - 1]);
}

void BandMoves::goRight(int number)
{
    const Place place = placeOf(number);
    if (canGoRight(number))
        std::swap(m_rows[place.row][place.column], m_rows[place.row][place.column + 1]);
}

void BandMoves::goUp(int number, int x)
{
    const std::size_t row = placeOf(number).row;
    if (row > 0)
        moveToRowOf(number, m_rows[row - 1].front(), x);
    else
        moveToNewRow(number, 0);
}

void BandMoves::goDown(int number, int x)
{
    const std::size_t row = placeOf(number).row;
    if (row + 1 < m_rows.size())
        moveToRowOf(number, m_rows[row + 1].front(), x);
    else
        moveToNewRow(number, m_rows.size());
}

// How bands are moved, by mouse or by menu.

#include "controls/cReBarPrivate.h"

#include <QMenu>

using namespace ReBarMeasures;

void cReBar::Private::removeFromRow(int number)
{
    const auto [row, place] = find(number);
    rows[row].erase(rows[row].begin() + static_cast<std::ptrdiff_t>(place));
    if (rows[row].empty())
        rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(row));
}

void cReBar::Private::moveToNewRow(int number, std::size_t row)
{
    const std::size_t from = find(number).first;
    const bool alone = rows[from].size() == 1;
    removeFromRow(number);
    if (alone && from < row)
        --row;
    rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(row), std::vector<int>{number});
}

void cReBar::Private::moveToRowOf(int number, int neighbour, int x)
{
    removeFromRow(number);
    std::vector<int> &row = rows[find(neighbour).first];
    const auto next = std::find_if(row.begin(), row.end(),
                                   [this, x](int other) { return x < band(other).rect.left() + 2 * gripperWidth; });
    Band &moved = band(number);
    moved.width = std::max(minWidth(moved), headWidth(moved) + idealChildWidth(moved));
    if (next != row.begin()) {
        Band &before = band(*std::prev(next));
        const int right = before.rect.left() + before.rect.width();
        moved.width = std::max(minWidth(moved), std::min(moved.width, right - x));
        before.width = std::max(minWidth(before), x - before.rect.left());
    }
    row.insert(next, number);
}

void cReBar::Private::dragWithinRow(int number, int x)
{
    const auto [rowNumber, place] = find(number);
    std::vector<int> &row = rows[rowNumber];
    if (place + 1 < row.size() && !band(row[place + 1]).fixed && x > band(row[place + 1]).rect.center().x()) {
        std::swap(row[place], row[place + 1]);
        return;
    }
    if (place == 0)
        return;
    Band &before = band(row[place - 1]);
    if (x < before.rect.left()) {
        if (!before.fixed)
            std::swap(row[place], row[place - 1]);
        return;
    }
    Band &moved = band(number);
    const int right = moved.rect.left() + moved.rect.width();
    int edge = std::max(x, before.rect.left() + minWidth(before) + columnGap);
    edge = std::min(edge, right - minWidth(moved));
    before.width = edge - columnGap - before.rect.left();
    moved.width = right - edge;
}

void cReBar::Private::drag(const QPoint &position)
{
    const auto [row, place] = find(dragged);
    const bool alone = rows[row].size() == 1;
    const QRect own = band(dragged).rect;
    keepWidths();
    if (position.y() < -dragSlack) {
        if (!(alone && row == 0))
            moveToNewRow(dragged, 0);
    } else if (position.y() > height + dragSlack) {
        if (!(alone && row + 1 == rows.size()))
            moveToNewRow(dragged, rows.size());
    } else if (position.y() < own.top() || position.y() >= own.top() + own.height()) {
        for (const std::vector<int> &other : rows) {
            const QRect rect = band(other.front()).rect;
            if (position.y() >= rect.top() && position.y() < rect.top() + rect.height()) {
                moveToRowOf(dragged, other.front(), position.x() - grip);
                break;
            }
        }
    } else {
        dragWithinRow(dragged, position.x() - grip);
    }
    layOut();
}

void cReBar::Private::showMoves(int number, const QPoint &globalPosition)
{
    const auto [row, place] = find(number);
    const std::size_t last = rows.size() - 1;
    const bool alone = rows[row].size() == 1;
    auto *menu = new QMenu(q);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const auto add = [&](const QString &text, bool possible, auto move) {
        QAction *action = menu->addAction(text);
        action->setEnabled(possible);
        connect(action, &QAction::triggered, q, [this, number, move] {
            if (!has(number))
                return;
            keepWidths();
            move(number);
            layOut();
        });
    };
    const auto swapWith = [this](int by) {
        return [this, by](int moved) {
            const auto [r, p] = find(moved);
            const std::size_t target = p + static_cast<std::size_t>(by);
            if (r < rows.size() && target < rows[r].size())
                std::swap(rows[r][p], rows[r][target]);
        };
    };
    add(QStringLiteral("Déplacer vers la &gauche"), place > 0, swapWith(-1));
    add(QStringLiteral("Déplacer vers la &droite"), place + 1 < rows[row].size(), swapWith(1));
    add(QStringLiteral("Ligne du &haut"), row > 0 || !alone, [this](int moved) {
        const std::size_t r = find(moved).first;
        if (r > 0)
            moveToRowOf(moved, rows[r - 1].front(), q->width() * 2 / 3);
        else
            moveToNewRow(moved, 0);
    });
    add(QStringLiteral("Ligne du &bas"), row < last || !alone, [this](int moved) {
        const std::size_t r = find(moved).first;
        if (r + 1 < rows.size())
            moveToRowOf(moved, rows[r + 1].front(), q->width() * 2 / 3);
        else
            moveToNewRow(moved, rows.size());
    });
    menu->popup(globalPosition);
}

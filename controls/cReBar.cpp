#include "controls/cReBar.h"

#include "controls/BandLayout.h"
#include "controls/OfficeXpStyle.h"
#include "controls/Twips.h"
#include "controls/cToolbar.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QStyleOption>
#include <QToolButton>

#include <algorithm>
#include <set>

namespace {

constexpr int gripperWidth = 10;
constexpr int chevronWidth = 16;
constexpr int captionGap = 4;
constexpr int rowGap = 2;
constexpr int columnGap = 2;
constexpr int smallestChild = 32; // of a child that can show less than all of itself
constexpr int dragSlack = 8;      // beyond the edge of the rebar before a band gets a row of its own

} // namespace

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
        const int gripper = band.fixed ? 2 : gripperWidth;
        return band.caption.isEmpty() ? gripper
                                      : gripper + q->fontMetrics().horizontalAdvance(band.caption) + 2 * captionGap;
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
        return std::min(ideal, band.minChildWidth >= 0 ? std::max(smallestChild, band.minChildWidth) : smallestChild);
    }

    int minWidth(const Band &band) const { return headWidth(band) + minChildWidth(band) + columnGap; }

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
        const std::vector<QRect> places = BandLayout::place(rows, wishes, q->width(), rowGap, columnGap);
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
            band.chevron->setGeometry(room.right() - chevronWidth + 1, room.top(), chevronWidth, room.height());
            room.setRight(room.right() - chevronWidth);
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

    void removeFromRow(int number)
    {
        const auto [row, place] = find(number);
        rows[row].erase(rows[row].begin() + static_cast<std::ptrdiff_t>(place));
        if (rows[row].empty())
            rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(row));
    }

    /// Puts a band into a row of its own before the row `row` (counted before the band is taken out).
    void moveToNewRow(int number, std::size_t row)
    {
        const std::size_t from = find(number).first;
        const bool alone = rows[from].size() == 1;
        removeFromRow(number);
        if (alone && from < row)
            --row;
        rows.insert(rows.begin() + static_cast<std::ptrdiff_t>(row), std::vector<int>{number});
    }

    /// Puts a band into the row of the band `neighbour`, by the horizontal place `x`.
    void moveToRowOf(int number, int neighbour, int x)
    {
        removeFromRow(number);
        std::vector<int> &row = rows[find(neighbour).first];
        const auto before =
            std::find_if(row.begin(), row.end(), [this, x](int other) { return x < band(other).rect.center().x(); });
        // A band that comes takes room from the one that it stands before or behind, not from the whole row.
        Band &moved = band(number);
        moved.width = std::max(minWidth(moved), headWidth(moved) + idealChildWidth(moved));
        if (before == row.end()) {
            Band &last = band(row.back());
            last.width = std::max(minWidth(last), x - last.rect.left());
        }
        row.insert(before, number);
    }

    /// Moves the left edge of a band within its row to `x`.
    void dragWithinRow(int number, int x)
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

    void drag(const QPoint &position)
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

    /// The moves of a band as a menu, for who doesn't drag.
    void showMoves(int number, const QPoint &globalPosition)
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
                moveToRowOf(moved, rows[r - 1].front(), q->width());
            else
                moveToNewRow(moved, 0);
        });
        add(QStringLiteral("Ligne du &bas"), row < last || !alone, [this](int moved) {
            const std::size_t r = find(moved).first;
            if (r + 1 < rows.size())
                moveToRowOf(moved, rows[r + 1].front(), q->width());
            else
                moveToNewRow(moved, rows.size());
        });
        menu->popup(globalPosition);
    }

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

cReBar::cReBar(QWidget *parent) : QWidget(parent), d(new Private(this))
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setMouseTracking(true);
    setAccessibleName(QStringLiteral("Barres d'outils"));
}

cReBar::~cReBar()
{
    blockSignals(true);
    for (const Private::Band &band : d->bands) {
        // Where the owner goes too, the child ends with the rebar.
        if (band.child && band.owner) {
            band.child->hide();
            band.child->setParent(band.owner);
        }
    }
}

void cReBar::AddBand(QWidget *child, const QString &caption, bool newRow, bool fixedSize, const QString &name)
{
    const auto number = static_cast<int>(d->bands.size());
    Private::Band band;
    band.child = child;
    band.owner = child->parentWidget();
    band.caption = caption;
    band.data = name;
    band.fixed = fixedSize;
    band.chevron = new QToolButton(this);
    band.chevron->setText(QStringLiteral("»"));
    band.chevron->setAutoRaise(true);
    band.chevron->setFocusPolicy(Qt::TabFocus);
    band.chevron->setToolTip(QStringLiteral("Autres boutons"));
    band.chevron->setAccessibleName(QStringLiteral("Autres boutons"));
    band.chevron->hide();
    connect(band.chevron, &QToolButton::clicked, this, [this, number] { d->pushChevron(number); });
    child->setParent(this);
    child->installEventFilter(this);
    child->show();
    if (const auto *toolbar = qobject_cast<const cToolbar *>(child))
        connect(toolbar, &cToolbar::overflowChanged, this, &cReBar::RebarSize);
    Private::dressChevron(band);
    d->bands.push_back(band);
    d->bands.back().width = d->headWidth(band) + d->idealChildWidth(band) + columnGap;
    if (newRow || d->rows.empty())
        d->rows.emplace_back();
    d->rows.back().push_back(number);
    d->layOut();
}

int cReBar::BandCount() const
{
    return static_cast<int>(d->bands.size());
}

QString cReBar::BandData(int id) const
{
    return d->has(id - 1) ? d->band(id - 1).data : QString();
}

void cReBar::setBandMinimumSize(int number, int width, int height)
{
    if (!d->has(number))
        return;
    Private::Band &band = d->band(number);
    if (width >= 0)
        band.minChildWidth = width;
    band.minHeight = std::max(0, height);
    d->layOut();
}

int cReBar::rebarHeight() const
{
    return d->height;
}

void cReBar::RebarSize()
{
    d->layOut();
}

void cReBar::RemoveAllBands()
{
    d->dragged = -1;
    for (const Private::Band &band : d->bands) {
        delete band.chevron;
        if (!band.child)
            continue;
        band.child->removeEventFilter(this);
        band.child->disconnect(this);
        band.child->hide();
        band.child->setParent(band.owner);
    }
    d->bands.clear();
    d->rows.clear();
    d->layOut();
}

QString cReBar::saveLayout() const
{
    std::vector<BandLayout::Band> bands;
    for (const std::vector<int> &row : d->rows) {
        for (const int number : row) {
            const Private::Band &band = d->band(number);
            bands.push_back({number + 1, band.data, band.rect, d->minChildWidth(band), d->idealChildWidth(band),
                             band.chevron->isVisibleTo(this), band.caption, band.fixed});
        }
    }
    return BandLayout::toText(bands, static_cast<int>(d->rows.size()));
}

bool cReBar::restoreLayout(const QString &layout)
{
    const auto kept = BandLayout::fromText(layout);
    if (!kept || kept->size() != d->bands.size())
        return false;
    std::vector<int> numbers; // of our bands, in the order of the text
    for (const BandLayout::Band &band : *kept) {
        const auto found = std::find_if(d->bands.begin(), d->bands.end(),
                                        [&band](const Private::Band &own) { return own.data == band.data; });
        if (found == d->bands.end())
            return false;
        numbers.push_back(static_cast<int>(found - d->bands.begin()));
    }
    if (std::set<int>(numbers.begin(), numbers.end()).size() != numbers.size())
        return false; // a band twice, and so another one missing

    d->rows = BandLayout::rowsOf(*kept);
    for (std::vector<int> &row : d->rows) {
        for (int &band : row)
            band = numbers[static_cast<std::size_t>(band)];
    }
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        const BandLayout::Band &from = (*kept)[i];
        Private::Band &band = d->band(numbers[i]);
        band.width = from.rect.width();
        band.minChildWidth = from.minWidth;
        band.caption = from.text;
        band.fixed = from.fixed;
    }
    d->layOut();
    return true;
}

QSize cReBar::sizeHint() const
{
    return {width(), d->height};
}

bool cReBar::event(QEvent *event)
{
    if (event->type() == QEvent::LayoutRequest)
        d->layOut();
    return QWidget::event(event);
}

bool cReBar::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::StyleChange && qobject_cast<cToolbar *>(watched)) {
        for (const Private::Band &band : d->bands) {
            if (band.child == watched)
                Private::dressChevron(band);
        }
        update();
    }
    return QWidget::eventFilter(watched, event);
}

void cReBar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    QStyle *style = d->drawingStyle();
    const QColor line = palette().color(QPalette::Mid);
    int rowBottom = -1;
    for (const Private::Band &band : d->bands) {
        QStyleOption option;
        option.initFrom(this);
        option.state |= QStyle::State_Horizontal;
        option.rect = QRect(band.rect.left(), band.rect.top() + 1, gripperWidth - 2, band.rect.height() - 2);
        if (!band.fixed)
            style->drawPrimitive(QStyle::PE_IndicatorToolBarHandle, &option, &painter, this);
        if (!band.caption.isEmpty()) {
            const int left = band.rect.left() + (band.fixed ? 2 : gripperWidth) + captionGap;
            painter.setPen(palette().color(QPalette::WindowText));
            painter.drawText(QRect(left, band.rect.top(), band.rect.width(), band.rect.height()),
                             Qt::AlignVCenter | Qt::TextSingleLine, band.caption);
        }
        const int bottom = band.rect.top() + band.rect.height();
        if (bottom != rowBottom && bottom < d->height) { // the line between two rows
            painter.setPen(line);
            painter.drawLine(0, bottom, width(), bottom);
            rowBottom = bottom;
        }
    }
}

void cReBar::resizeEvent(QResizeEvent *)
{
    d->layOut();
}

void cReBar::mousePressEvent(QMouseEvent *event)
{
    const QPoint position = event->position().toPoint();
    const int number = event->button() == Qt::LeftButton ? d->gripperAt(position) : -1;
    if (number >= 0 && !d->band(number).fixed) {
        d->dragged = number;
        d->grip = position.x() - d->band(number).rect.left();
    }
}

void cReBar::mouseMoveEvent(QMouseEvent *event)
{
    const QPoint position = event->position().toPoint();
    if (d->dragged >= 0) {
        d->drag(position);
        return;
    }
    const int number = d->gripperAt(position);
    if (number >= 0 && !d->band(number).fixed)
        setCursor(Qt::SizeAllCursor);
    else
        unsetCursor();
}

void cReBar::mouseReleaseEvent(QMouseEvent *)
{
    d->dragged = -1;
}

void cReBar::mouseDoubleClickEvent(QMouseEvent *event)
{
    // A double click on a gripper gives the band the width that shows all of its child.
    const int number = d->gripperAt(event->position().toPoint());
    if (number < 0 || d->band(number).fixed)
        return;
    d->keepWidths();
    Private::Band &band = d->band(number);
    band.width = d->headWidth(band) + d->idealChildWidth(band) + columnGap;
    d->layOut();
}

void cReBar::contextMenuEvent(QContextMenuEvent *event)
{
    const int number = d->gripperAt(event->pos());
    if (number >= 0 && !d->band(number).fixed)
        d->showMoves(number, event->globalPos());
}

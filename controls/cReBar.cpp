// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/cReBar.h"

#include "controls/BandLayout.h"
#include "controls/BandMoves.h"
#include "controls/ReBarBand.h"
#include "controls/ReBarMeasures.h"
#include "controls/ScreenReader.h"
#include "controls/Twips.h"
#include "controls/cToolbar.h"
#include "platform/Literals.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOption>

#include <algorithm>
#include <cmath>
#include <functional>
#include <set>

using namespace ReBarMeasures;

struct cReBar::Private
{
    explicit Private(cReBar *rebar) : q(rebar) {}

    cReBar *q;
    std::vector<ReBarBand> bands; ///< in order of adding
    BandLayout::Rows rows;
    int height = 0;
    bool layingOut = false;

    int dragged = -1; ///< number of the band that the mouse holds
    int grip = 0;     ///< where in the band

    ReBarBand &band(int number) { return bands[static_cast<std::size_t>(number)]; }
    bool has(int number) const { return number >= 0 && number < static_cast<int>(bands.size()); }

    void layOut()
    {
        if (layingOut)
            return;
        layingOut = true;
        std::vector<BandLayout::Wish> wishes;
        for (const ReBarBand &band : bands)
            wishes.push_back({band.width, band.minWidth(), std::max(band.minHeight, band.childHeight())});
        const std::vector<QRect> places = BandLayout::place(rows, wishes, q->width(), rowGap, columnGap);
        int bottom = 0;
        for (std::size_t i = 0; i < bands.size(); ++i) {
            bands[i].rect = places[i];
            bottom = std::max(bottom, places[i].top() + places[i].height());
            bands[i].placeChild();
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

    /// The band whose gripper is at `position` and that may be moved; -1 for none.
    int movableAt(const QPoint &position) const
    {
        for (std::size_t i = 0; i < bands.size(); ++i) {
            if (bands[i].headContains(position))
                return bands[i].fixed ? -1 : static_cast<int>(i);
        }
        return -1;
    }

    BandMoves moves()
    {
        std::vector<BandMoves::Band> facts;
        for (const ReBarBand &band : bands)
            facts.push_back({band.rect, band.rect.width(), band.minWidth(), band.fullWidth(), band.fixed});
        return {rows, std::move(facts)};
    }

    template <class Change>
    void move(Change change)
    {
        BandMoves moved = moves();
        change(moved);
        for (std::size_t i = 0; i < bands.size(); ++i)
            bands[i].width = moved.bands()[i].width;
        layOut();
    }

    /// The moves of a band as a menu, for who doesn't drag.
    void showMoves(int number, const QPoint &globalPosition)
    {
        auto *menu = new QMenu(q);
        menu->setAttribute(Qt::WA_DeleteOnClose);
        const auto add = [&](const QString &text, bool possible, auto go) {
            QAction *action = menu->addAction(text);
            action->setEnabled(possible);
            connect(action, &QAction::triggered, q, [this, number, go] {
                if (has(number))
                    move([number, go](BandMoves &moved) { go(moved, number); });
            });
        };
        const auto above = [this](BandMoves &moved, int own) { moved.goUp(own, q->width() * 2 / 3); };
        const auto below = [this](BandMoves &moved, int own) { moved.goDown(own, q->width() * 2 / 3); };
        const BandMoves now = moves();
        add(u"Déplacer vers la &gauche"_s, now.canGoLeft(number), std::mem_fn(&BandMoves::goLeft));
        add(u"Déplacer vers la &droite"_s, now.canGoRight(number), std::mem_fn(&BandMoves::goRight));
        add(u"Ligne du &haut"_s, now.canGoUp(number), above);
        add(u"Ligne du &bas"_s, now.canGoDown(number), below);
        menu->popup(globalPosition);
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
        for (const ReBarBand &band : bands) {
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
    ScreenReader::setRole(*this, QAccessible::Grouping);
    setAccessibleName(u"Barres d'outils"_s);
}

cReBar::~cReBar()
{
    blockSignals(true);
    for (const ReBarBand &band : d->bands) {
        // Where the owner goes too, the child ends with the rebar.
        if (band.child && band.owner)
            band.letChildGo();
    }
}

void cReBar::AddBand(QWidget *child, const QString &caption, bool newRow, bool fixedSize, const QString &name)
{
    const auto number = static_cast<int>(d->bands.size());
    ReBarBand band;
    band.child = child;
    band.owner = child->parentWidget();
    band.caption = caption;
    band.data = name;
    band.fixed = fixedSize;
    band.chevron = new QToolButton(this);
    band.chevron->setText(u"»"_s);
    band.chevron->setAutoRaise(true);
    band.chevron->setFocusPolicy(Qt::TabFocus);
    band.chevron->setToolTip(u"Autres boutons"_s);
    band.chevron->setAccessibleName(u"Autres boutons"_s);
    band.chevron->hide();
    connect(band.chevron, &QToolButton::clicked, this, [this, number] { d->pushChevron(number); });
    child->setParent(this);
    child->installEventFilter(this);
    child->show();
    if (const auto *toolbar = qobject_cast<const cToolbar *>(child))
        connect(toolbar, &cToolbar::overflowChanged, this, &cReBar::RebarSize);
    band.dressChevron();
    band.width = band.fullWidth() + columnGap;
    d->bands.push_back(band);
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
    ReBarBand &band = d->band(number);
    if (width >= 0)
        band.minimumChildWidth = width;
    band.minHeight = std::max(0, height);
    d->layOut();
}

void cReBar::showAllOfBand(int number)
{
    if (d->has(number))
        d->move([this, number](BandMoves &moves) { moves.showAll(number, width()); });
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
    for (const ReBarBand &band : d->bands) {
        delete band.chevron;
        if (!band.child)
            continue;
        band.child->removeEventFilter(this);
        band.child->disconnect(this);
        band.letChildGo();
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
            const ReBarBand &band = d->band(number);
            bands.push_back({number + 1, band.data, band.rect, band.minChildWidth(), band.idealChildWidth(),
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
                                        [&band](const ReBarBand &own) { return own.data == band.data; });
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
        ReBarBand &band = d->band(numbers[i]);
        band.width = from.rect.width();
        band.minimumChildWidth = from.minWidth;
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
        for (const ReBarBand &band : d->bands) {
            if (band.child == watched)
                band.dressChevron();
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
    const double dots = std::max(1.0, painter.device()->devicePixelRatio());
    int rowBottom = -1;
    for (const ReBarBand &band : d->bands) {
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
            // On whole dots of the screen: on a part of one the line would go under the bands.
            const double top = std::ceil(bottom * dots) / dots;
            painter.fillRect(QRectF(0, top, width(), std::floor(dots) / dots), line);
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
    const int number = event->button() == Qt::LeftButton ? d->movableAt(position) : -1;
    if (number >= 0) {
        d->dragged = number;
        d->grip = position.x() - d->band(number).rect.left();
    }
}

void cReBar::mouseMoveEvent(QMouseEvent *event)
{
    const QPoint position = event->position().toPoint();
    if (d->dragged >= 0) {
        d->move([this, &position](BandMoves &moves) { moves.drag(d->dragged, d->grip, position, d->height); });
        return;
    }
    if (d->movableAt(position) >= 0)
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
    const int number = d->movableAt(event->position().toPoint());
    if (number >= 0)
        showAllOfBand(number);
}

void cReBar::contextMenuEvent(QContextMenuEvent *event)
{
    const int number = d->movableAt(event->pos());
    if (number >= 0)
        d->showMoves(number, event->globalPos());
}

#include "controls/cReBar.h"

#include "controls/cReBarPrivate.h"

#include <QContextMenuEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOption>

#include <set>

using namespace ReBarMeasures;

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

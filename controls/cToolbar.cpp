// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/cToolbar.h"

#include "controls/ImageList.h"
#include "controls/OfficeXpStyle.h"
#include "controls/ScreenReader.h"
#include "controls/ToolbarButton.h"
#include "controls/ToolbarRow.h"
#include "controls/cPopupMenu.h"
#include "platform/Literals.h"

#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QPointer>
#include <QShortcut>
#include <QStyleOption>

#include <algorithm>

namespace {

class SeparatorLine final : public QWidget
{
public:
    explicit SeparatorLine(QWidget *parent) : QWidget(parent) { ScreenReader::setRole(*this, QAccessible::Separator); }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        QStyleOption option;
        option.initFrom(this);
        option.state |= QStyle::State_Horizontal;
        style()->drawPrimitive(QStyle::PE_IndicatorToolBarSeparator, &option, &painter, this);
    }
};

} // namespace

struct cToolbar::Private
{
    explicit Private(cToolbar *toolbar) : q(toolbar) {}

    cToolbar *q;
    ToolbarRow row;
    QMenuBar *menuBar = nullptr;
    QPointer<QMenu> overflow;
    QPoint overflowPlace;
    const ImageList *images = nullptr;
    DrawStyle drawStyle = DrawStyle::Standard;
    bool captions = false;
    bool overflowing = false;
    int lastIdealWidth = -1;
    int shownMenuWidth = 0;
    ControlsVersion version;

    QStyle *widgetStyle() const { return drawStyle == DrawStyle::OfficeXp ? OfficeXpStyle::shared() : nullptr; }

    void dress()
    {
        row.dress(images, captions);
        changed();
    }

    int idealWidth() const { return menuBar ? menuBar->sizeHint().width() : row.idealWidth(); }
    int idealHeight() const { return menuBar ? menuBar->sizeHint().height() : row.idealHeight(); }

    void changed()
    {
        q->updateGeometry();
        layOut();
    }

    void layOut()
    {
        const bool before = overflowing;
        overflowing = menuBar ? layOutMenuBar() : row.layOut(q->size());
        const int ideal = idealWidth();
        if (before != overflowing || ideal != lastIdealWidth) {
            lastIdealWidth = ideal;
            Q_EMIT q->overflowChanged();
        }
    }

    /// The bar keeps the width that shows all its entries, and is cut off behind the last one that fits. True when it
    /// is cut.
    bool layOutMenuBar()
    {
        const QSize size = menuBar->sizeHint();
        menuBar->setGeometry(0, (q->height() - size.height()) / 2, size.width(), size.height());
        shownMenuWidth = 0;
        bool cut = false;
        for (QAction *action : menuBar->actions()) {
            const int end = menuBar->actionGeometry(action).right() + 1;
            cut = cut || end > q->width();
            if (!cut)
                shownMenuWidth = end;
        }
        if (cut)
            menuBar->setMask(QRect(0, 0, std::max(1, shownMenuWidth), size.height()));
        else
            menuBar->clearMask();
        return cut;
    }
};

cToolbar::cToolbar(QWidget *parent) : QWidget(parent), d(new Private(this))
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    ScreenReader::setRole(*this, QAccessible::ToolBar);
}

cToolbar::~cToolbar() = default;

void cToolbar::setImageList(const ImageList *images)
{
    d->images = images;
    d->dress();
}

void cToolbar::setDrawStyle(DrawStyle style)
{
    d->drawStyle = style;
    QStyle *widgetStyle = d->widgetStyle();
    setStyle(widgetStyle);
    d->row.setStyle(widgetStyle);
    if (d->menuBar)
        d->menuBar->setStyle(widgetStyle);
    if (d->overflow)
        d->overflow->setStyle(widgetStyle);
    d->changed();
}

DrawStyle cToolbar::drawStyle() const
{
    return d->drawStyle;
}

void cToolbar::setCaptionsVisible(bool visible)
{
    d->captions = visible;
    d->dress();
}

void cToolbar::AddButton(const QString &tip, int image, const QString &caption, ButtonStyle style, const QString &key)
{
    const auto index = static_cast<int>(d->row.entries().size());
    ToolbarRow::Entry entry;
    entry.key = key;
    entry.tip = tip;
    entry.image = image;
    if (style == Separator) {
        entry.separator = new SeparatorLine(this);
        entry.separator->setStyle(d->widgetStyle());
    } else {
        entry.button = new ToolbarButton(
            style == DropDownArrow, [this, index] { Q_EMIT DropDownPress(index); }, this);
        entry.button->setObjectName(key);
        entry.button->setText(caption);
        entry.button->setToolTip(tip);
        entry.button->setAccessibleName(tip);
        if (style == DropDownArrow)
            entry.button->setAccessibleDescription(u"La flèche du bas ouvre le menu"_s);
        entry.button->setFocusPolicy(Qt::NoFocus);
        entry.button->setStyle(d->widgetStyle());
        entry.button->installEventFilter(this);
        connect(entry.button, &QToolButton::clicked, this, [this, index] { Q_EMIT ButtonClick(index); });
    }
    d->row.add(entry);
    d->dress();
}

int cToolbar::buttonCount() const
{
    return d->menuBar ? static_cast<int>(d->menuBar->actions().size()) : static_cast<int>(d->row.entries().size());
}

void cToolbar::setButtonEnabled(int index, bool enabled)
{
    const ToolbarRow::Entry *entry = d->row.at(index);
    if (!entry || !entry->button || entry->button->isEnabled() == enabled)
        return;
    entry->button->setEnabled(enabled);
    d->row.updateTabStop();
}

void cToolbar::setButtonEnabled(const QString &key, bool enabled)
{
    setButtonEnabled(d->row.indexOf(key), enabled);
}

bool cToolbar::isButtonEnabled(int index) const
{
    const ToolbarRow::Entry *entry = d->row.at(index);
    return entry && entry->button && entry->button->isEnabled();
}

bool cToolbar::isButtonEnabled(const QString &key) const
{
    return isButtonEnabled(d->row.indexOf(key));
}

QToolButton *cToolbar::button(int index) const
{
    const ToolbarRow::Entry *entry = d->row.at(index);
    return entry ? entry->button : nullptr;
}

void cToolbar::CreateFromMenu(cPopupMenu *menu)
{
    d->row.clear();
    delete d->menuBar;
    d->menuBar = new QMenuBar(this);
    d->menuBar->setNativeMenuBar(false); // it is a band of the window
    d->menuBar->setStyle(d->widgetStyle());
    d->menuBar->setAccessibleName(u"Barre de menus"_s);
    d->menuBar->addActions(menu->topLevelActions());
    d->menuBar->installEventFilter(this);
    d->menuBar->show();

    auto *first = new QShortcut(QKeySequence(Qt::Key_F10), d->menuBar);
    connect(first, &QShortcut::activated, d->menuBar, [bar = d->menuBar] {
        if (!bar->actions().isEmpty())
            bar->setActiveAction(bar->actions().constFirst());
    });
    d->changed();
}

QPoint cToolbar::dropDownPosition(int index) const
{
    const ToolbarRow::Entry *entry = d->row.at(index);
    if (entry && entry->button && entry->shown)
        return entry->button->mapToGlobal(QPoint(0, entry->button->height()));
    return d->overflowPlace; // the arrow was chosen in the overflow menu
}

QMenu *cToolbar::ShowOverflow(const QPoint &globalPosition)
{
    if (!d->overflowing)
        return nullptr;
    delete d->overflow;
    d->overflow = new QMenu(this);
    d->overflow->setAccessibleName(u"Autres boutons"_s);
    d->overflow->setStyle(d->widgetStyle());
    d->overflowPlace = globalPosition;
    if (d->menuBar) {
        for (QAction *action : d->menuBar->actions()) {
            if (d->menuBar->actionGeometry(action).right() >= d->shownMenuWidth)
                d->overflow->addAction(action);
        }
    }
    for (std::size_t i = 0; i < d->row.entries().size(); ++i) {
        const ToolbarRow::Entry &entry = d->row.entries()[i];
        if (entry.shown)
            continue;
        if (!entry.button) {
            if (!d->overflow->isEmpty())
                d->overflow->addSeparator();
            continue;
        }
        QAction *action = d->overflow->addAction(entry.button->icon(), entry.tip);
        action->setEnabled(entry.button->isEnabled());
        const auto index = static_cast<int>(i);
        if (entry.button->withArrow())
            connect(action, &QAction::triggered, this, [this, index] { Q_EMIT DropDownPress(index); });
        else
            connect(action, &QAction::triggered, this, [this, index] { Q_EMIT ButtonClick(index); });
    }
    d->overflow->popup(globalPosition);
    return d->overflow;
}

int cToolbar::idealWidth() const
{
    return d->idealWidth();
}

cToolbar::ControlsVersion cToolbar::commonControlsVersion() const
{
    return d->version;
}

void cToolbar::setCommonControlsVersion(ControlsVersion version)
{
    d->version = version;
}

QSize cToolbar::sizeHint() const
{
    return {d->idealWidth(), d->idealHeight()};
}

QSize cToolbar::minimumSizeHint() const
{
    return {0, d->idealHeight()};
}

void cToolbar::resizeEvent(QResizeEvent *)
{
    d->layOut();
}

void cToolbar::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        d->changed();
}

bool cToolbar::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == d->menuBar) {
        const QEvent::Type type = event->type();
        if (type == QEvent::ActionAdded || type == QEvent::ActionRemoved || type == QEvent::ActionChanged)
            QMetaObject::invokeMethod(
                this, [this] { d->changed(); }, Qt::QueuedConnection);
        return QWidget::eventFilter(watched, event);
    }
    const auto *button = qobject_cast<QToolButton *>(watched);
    if (button && event->type() == QEvent::FocusIn)
        d->row.updateTabStop(button);
    if (button && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Left || key == Qt::Key_Right) {
            d->row.moveFocus(button, key == Qt::Key_Right ? 1 : -1);
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

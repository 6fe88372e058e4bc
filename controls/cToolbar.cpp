#include "controls/cToolbar.h"

#include "controls/ImageList.h"
#include "controls/OfficeXpStyle.h"
#include "controls/ToolbarButton.h"
#include "controls/cPopupMenu.h"

#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QPointer>
#include <QShortcut>
#include <QStyleOption>

#include <algorithm>

namespace {

constexpr int separatorWidth = 8;

class SeparatorLine final : public QWidget
{
public:
    using QWidget::QWidget;

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
    struct Entry
    {
        QString key;
        QString tip;
        int image = -1;
        ToolbarButton *button = nullptr; ///< null for a separator
        QWidget *separator = nullptr;
        bool shown = true; ///< it fits into the present width

        QWidget *widget() const { return button ? static_cast<QWidget *>(button) : separator; }
    };

    explicit Private(cToolbar *toolbar) : q(toolbar) {}

    cToolbar *q;
    std::vector<Entry> entries;
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

    const Entry *entryAt(int index) const
    {
        return index >= 0 && index < static_cast<int>(entries.size()) ? &entries[static_cast<std::size_t>(index)]
                                                                      : nullptr;
    }

    int indexOf(const QString &key) const
    {
        for (std::size_t i = 0; i < entries.size(); ++i) {
            if (entries[i].button && entries[i].key == key)
                return static_cast<int>(i);
        }
        return -1;
    }

    void dress(const Entry &entry) const
    {
        if (!entry.button)
            return;
        entry.button->setIcon(images ? images->icon(entry.image) : QIcon());
        if (images)
            entry.button->setIconSize(QSize(images->size(), images->size()));
        const bool text = captions || !images || entry.image < 0;
        entry.button->setToolButtonStyle(!text             ? Qt::ToolButtonIconOnly
                                         : entry.image < 0 ? Qt::ToolButtonTextOnly
                                                           : Qt::ToolButtonTextUnderIcon);
    }

    void dressAll()
    {
        for (const Entry &entry : entries)
            dress(entry);
        changed();
    }

    int widthOf(const Entry &entry) const { return entry.button ? entry.button->sizeHint().width() : separatorWidth; }

    int idealWidth() const
    {
        if (menuBar)
            return menuBar->sizeHint().width();
        int width = 0;
        for (const Entry &entry : entries)
            width += widthOf(entry);
        return width;
    }

    int idealHeight() const
    {
        if (menuBar)
            return menuBar->sizeHint().height();
        int height = 0;
        for (const Entry &entry : entries)
            height = std::max(height, entry.button ? entry.button->sizeHint().height() : 0);
        return height;
    }

    void changed()
    {
        q->updateGeometry();
        layOut();
    }

    void layOut()
    {
        const bool before = overflowing;
        if (menuBar)
            layOutMenuBar();
        else
            layOutButtons();
        const int ideal = idealWidth();
        if (before != overflowing || ideal != lastIdealWidth) {
            lastIdealWidth = ideal;
            Q_EMIT q->overflowChanged();
        }
    }

    void layOutButtons()
    {
        int x = 0;
        overflowing = false;
        for (Entry &entry : entries) {
            const int width = widthOf(entry);
            // Behind the first one that doesn't fit nothing is shown, so that the overflow menu is the row's end.
            overflowing = overflowing || x + width > q->width();
            entry.shown = !overflowing;
            const int height = entry.button ? std::min(entry.button->sizeHint().height(), q->height()) : q->height();
            entry.widget()->setGeometry(x, (q->height() - height) / 2, width, height);
            entry.widget()->setVisible(entry.shown);
            x += width;
        }
        // A separator that has nothing behind it any more would only be a stray line.
        for (std::size_t i = entries.size(); overflowing && i-- > 0;) {
            if (!entries[i].shown)
                continue;
            if (entries[i].button)
                break;
            entries[i].separator->hide();
        }
        updateTabStop();
    }

    /// The bar keeps the width that shows all its entries, and is cut off behind the last one that fits.
    void layOutMenuBar()
    {
        const QSize size = menuBar->sizeHint();
        menuBar->setGeometry(0, (q->height() - size.height()) / 2, size.width(), size.height());
        shownMenuWidth = 0;
        overflowing = false;
        for (QAction *action : menuBar->actions()) {
            const int end = menuBar->actionGeometry(action).right() + 1;
            overflowing = overflowing || end > q->width();
            if (!overflowing)
                shownMenuWidth = end;
        }
        if (overflowing)
            menuBar->setMask(QRect(0, 0, std::max(1, shownMenuWidth), size.height()));
        else
            menuBar->clearMask();
    }

    bool canHaveFocus(const Entry &entry) const { return entry.button && entry.shown && entry.button->isEnabled(); }

    /// One button of the row is a stop of the Tab key: the one that had the focus last, or the first one that can have
    /// it.
    void updateTabStop(const QToolButton *wanted = nullptr)
    {
        const Entry *stop = nullptr;
        for (const Entry &entry : entries) {
            if (!canHaveFocus(entry))
                continue;
            const bool holder = wanted ? entry.button == wanted : entry.button->focusPolicy() == Qt::TabFocus;
            if (!stop || holder)
                stop = &entry;
            if (holder)
                break;
        }
        for (const Entry &entry : entries) {
            if (entry.button)
                entry.button->setFocusPolicy(&entry == stop ? Qt::TabFocus : Qt::NoFocus);
        }
    }

    /// Moves the focus from `button` over the next ones; beyond the end it begins at the other end.
    void moveFocus(const QToolButton *button, int direction)
    {
        const auto count = static_cast<int>(entries.size());
        int from = 0;
        while (from < count && entries[static_cast<std::size_t>(from)].button != button)
            ++from;
        for (int step = 1; step < count; ++step) {
            const int at = ((from + direction * step) % count + count) % count;
            const Entry &entry = entries[static_cast<std::size_t>(at)];
            if (canHaveFocus(entry)) {
                entry.button->setFocus(Qt::TabFocusReason);
                return;
            }
        }
    }
};

cToolbar::cToolbar(QWidget *parent) : QWidget(parent), d(new Private(this))
{
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
}

cToolbar::~cToolbar() = default;

void cToolbar::setImageList(const ImageList *images)
{
    d->images = images;
    d->dressAll();
}

void cToolbar::setDrawStyle(DrawStyle style)
{
    d->drawStyle = style;
    QStyle *widgetStyle = d->widgetStyle();
    setStyle(widgetStyle);
    for (const Private::Entry &entry : d->entries)
        entry.widget()->setStyle(widgetStyle);
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
    d->dressAll();
}

void cToolbar::AddButton(const QString &tip, int image, const QString &caption, ButtonStyle style, const QString &key)
{
    const auto index = static_cast<int>(d->entries.size());
    Private::Entry entry;
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
            entry.button->setAccessibleDescription(QStringLiteral("La flèche du bas ouvre le menu"));
        entry.button->setFocusPolicy(Qt::NoFocus);
        entry.button->setStyle(d->widgetStyle());
        entry.button->installEventFilter(this);
        connect(entry.button, &QToolButton::clicked, this, [this, index] { Q_EMIT ButtonClick(index); });
    }
    d->entries.push_back(entry);
    d->dress(entry);
    d->changed();
}

int cToolbar::buttonCount() const
{
    return d->menuBar ? static_cast<int>(d->menuBar->actions().size()) : static_cast<int>(d->entries.size());
}

void cToolbar::setButtonEnabled(int index, bool enabled)
{
    const Private::Entry *entry = d->entryAt(index);
    if (!entry || !entry->button || entry->button->isEnabled() == enabled)
        return;
    entry->button->setEnabled(enabled);
    d->updateTabStop();
}

void cToolbar::setButtonEnabled(const QString &key, bool enabled)
{
    setButtonEnabled(d->indexOf(key), enabled);
}

bool cToolbar::isButtonEnabled(int index) const
{
    const Private::Entry *entry = d->entryAt(index);
    return entry && entry->button && entry->button->isEnabled();
}

bool cToolbar::isButtonEnabled(const QString &key) const
{
    return isButtonEnabled(d->indexOf(key));
}

QToolButton *cToolbar::button(int index) const
{
    const Private::Entry *entry = d->entryAt(index);
    return entry ? entry->button : nullptr;
}

void cToolbar::CreateFromMenu(cPopupMenu *menu)
{
    for (const Private::Entry &entry : d->entries)
        delete entry.widget();
    d->entries.clear();
    delete d->menuBar;
    d->menuBar = new QMenuBar(this);
    d->menuBar->setNativeMenuBar(false); // it is a band of the window
    d->menuBar->setStyle(d->widgetStyle());
    d->menuBar->setAccessibleName(QStringLiteral("Barre de menus"));
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
    const Private::Entry *entry = d->entryAt(index);
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
    d->overflow->setStyle(d->widgetStyle());
    d->overflowPlace = globalPosition;
    if (d->menuBar) {
        for (QAction *action : d->menuBar->actions()) {
            if (d->menuBar->actionGeometry(action).right() >= d->shownMenuWidth)
                d->overflow->addAction(action);
        }
    }
    for (std::size_t i = 0; i < d->entries.size(); ++i) {
        const Private::Entry &entry = d->entries[i];
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

bool cToolbar::hasOverflow() const
{
    return d->overflowing;
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
        d->updateTabStop(button);
    if (button && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Left || key == Qt::Key_Right) {
            d->moveFocus(button, key == Qt::Key_Right ? 1 : -1);
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/OfficeXpStyle.h"

#include <QApplication>
#include <QPainter>
#include <QPointer>
#include <QStyleOption>

#include <algorithm>

namespace {

constexpr int stripPadding = 4; // around a picture in the strip
constexpr int textGap = 8;      // between the strip and the text
constexpr int arrowRoom = 20;   // at the right end of an entry
constexpr int shortcutGap = 16;

QColor mix(const QColor &one, const QColor &other, double share)
{
    const auto part = [share](int a, int b) { return int(a + (b - a) * share); };
    return {part(one.red(), other.red()), part(one.green(), other.green()), part(one.blue(), other.blue())};
}

// The colours of the drawing are those of the enabled state, also around a disabled entry.

QColor borderColour(const QPalette &palette)
{
    return palette.color(QPalette::Active, QPalette::Highlight);
}

QColor hoverFill(const QPalette &palette)
{
    return mix(palette.color(QPalette::Active, QPalette::Base), borderColour(palette), 0.28);
}

QColor pressedFill(const QPalette &palette)
{
    return mix(palette.color(QPalette::Active, QPalette::Base), borderColour(palette), 0.5);
}

QColor menuFill(const QPalette &palette)
{
    return mix(palette.color(QPalette::Active, QPalette::Base), palette.color(QPalette::Active, QPalette::Window),
               0.15);
}

QColor lineColour(const QPalette &palette)
{
    return mix(palette.color(QPalette::Active, QPalette::Window), palette.color(QPalette::Active, QPalette::WindowText),
               0.3);
}

QColor frameColour(const QPalette &palette)
{
    return mix(palette.color(QPalette::Active, QPalette::Window), palette.color(QPalette::Active, QPalette::WindowText),
               0.5);
}

void fillBox(QPainter *painter, const QRect &rect, const QColor &fill, const QColor &border)
{
    painter->fillRect(rect, fill);
    painter->setPen(border);
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(rect.adjusted(0, 0, -1, -1));
}

int pictureSize(const QStyleOptionMenuItem &item)
{
    return std::max(16, item.maxIconWidth - 4); // the menu adds 4 to its widest picture
}

int stripWidth(const QStyleOptionMenuItem &item)
{
    return pictureSize(item) + 2 * stripPadding;
}

void drawTick(QPainter *painter, const QRectF &box, const QColor &colour)
{
    painter->setPen(QPen(colour, 1.8));
    painter->setRenderHint(QPainter::Antialiasing);
    const QPointF points[] = {{box.left(), box.center().y()},
                              {box.left() + box.width() * 0.35, box.bottom() - 1},
                              {box.right(), box.top() + 1}};
    painter->drawPolyline(points, 3);
    painter->setRenderHint(QPainter::Antialiasing, false);
}

} // namespace

OfficeXpStyle::OfficeXpStyle() = default;

QStyle *OfficeXpStyle::shared()
{
    static QPointer<OfficeXpStyle> style;
    if (!style) {
        style = new OfficeXpStyle;
        style->setParent(qApp);
    }
    return style;
}

void OfficeXpStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                                  const QWidget *widget) const
{
    const QRect rect = option->rect;
    switch (element) {
    case PE_PanelMenu:
        painter->fillRect(rect, menuFill(option->palette));
        return;
    case PE_FrameMenu:
        painter->setPen(frameColour(option->palette));
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(rect.adjusted(0, 0, -1, -1));
        return;
    case PE_PanelMenuBar:
        return;
    case PE_IndicatorToolBarHandle: {
        const bool across = option->state & State_Horizontal;
        const QColor colour = lineColour(option->palette);
        const int length = across ? rect.height() : rect.width();
        for (int at = 4; at <= length - 6; at += 4) {
            const QPoint corner = across ? QPoint(rect.center().x() - 1, rect.top() + at)
                                         : QPoint(rect.left() + at, rect.center().y() - 1);
            painter->fillRect(QRect(corner, QSize(2, 2)), colour);
        }
        return;
    }
    case PE_IndicatorToolBarSeparator:
        painter->setPen(lineColour(option->palette));
        painter->drawLine(rect.center().x(), rect.top() + 3, rect.center().x(), rect.bottom() - 3);
        return;
    case PE_PanelButtonTool: {
        const bool down = option->state & (State_Sunken | State_On);
        if (down || ((option->state & State_MouseOver) && (option->state & State_Enabled)))
            fillBox(painter, rect, down ? pressedFill(option->palette) : hoverFill(option->palette),
                    borderColour(option->palette));
        return;
    }
    default:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void OfficeXpStyle::drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                                const QWidget *widget) const
{
    switch (element) {
    case CE_MenuItem:
        if (const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option)) {
            drawMenuItem(*item, painter, widget);
            return;
        }
        break;
    case CE_MenuBarItem:
        if (const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option)) {
            drawMenuBarItem(*item, painter, widget);
            return;
        }
        break;
    case CE_MenuBarEmptyArea:
        painter->fillRect(option->rect, option->palette.window());
        return;
    case CE_MenuEmptyArea:
        painter->fillRect(option->rect, menuFill(option->palette));
        return;
    default:
        break;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}

void OfficeXpStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                                       const QWidget *widget) const
{
    if (control == CC_ToolButton) {
        if (const auto *button = qstyleoption_cast<const QStyleOptionToolButton *>(option)) {
            drawToolButton(*button, painter, widget);
            return;
        }
    }
    QProxyStyle::drawComplexControl(control, option, painter, widget);
}

QSize OfficeXpStyle::sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &size,
                                      const QWidget *widget) const
{
    const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option);
    if (type == CT_MenuItem && item) {
        if (item->menuItemType == QStyleOptionMenuItem::Separator)
            return {size.width(), 5};
        const int height = std::max({size.height(), item->fontMetrics.height(), pictureSize(*item)}) + 6;
        const int shortcut = item->text.contains(u'\t') ? shortcutGap : 0;
        return {stripWidth(*item) + textGap + size.width() + shortcut + arrowRoom, height};
    }
    return QProxyStyle::sizeFromContents(type, option, size, widget);
}

int OfficeXpStyle::pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const
{
    switch (metric) {
    case PM_MenuPanelWidth:
    case PM_MenuHMargin:
    case PM_MenuVMargin:
        return 1;
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
        return 0;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

void OfficeXpStyle::drawMenuItem(const QStyleOptionMenuItem &item, QPainter *painter, const QWidget *widget) const
{
    painter->save();
    const QRect rect = item.rect;
    const QPalette &palette = item.palette;
    const bool enabled = item.state & State_Enabled;
    const bool selected = (item.state & State_Selected) && item.menuItemType != QStyleOptionMenuItem::Separator;
    const QRect strip(rect.left(), rect.top(), stripWidth(item), rect.height());
    const int textLeft = strip.right() + 1 + textGap;

    painter->fillRect(rect, menuFill(palette));
    painter->fillRect(strip, palette.color(QPalette::Active, QPalette::Window));
    if (item.menuItemType == QStyleOptionMenuItem::Separator) {
        painter->setPen(lineColour(palette));
        painter->drawLine(textLeft, rect.center().y(), rect.right(), rect.center().y());
        painter->restore();
        return;
    }
    if (selected) // a disabled entry that the keyboard stands on gets the border alone
        fillBox(painter, rect.adjusted(1, 0, -1, 0), enabled ? hoverFill(palette) : menuFill(palette),
                borderColour(palette));

    const int side = pictureSize(item);
    QRect picture(0, 0, side, side);
    picture.moveCenter(strip.center());
    if (item.checked)
        fillBox(painter, picture.adjusted(-2, -2, 2, 2), selected ? pressedFill(palette) : hoverFill(palette),
                borderColour(palette));
    const QPalette::ColorGroup group = enabled ? QPalette::Active : QPalette::Disabled;
    if (!item.icon.isNull()) {
        item.icon.paint(painter, picture, Qt::AlignCenter, enabled ? QIcon::Normal : QIcon::Disabled);
    } else if (item.checked) {
        drawTick(painter, picture.adjusted(3, 3, -3, -3), palette.color(group, QPalette::WindowText));
    }

    QString text = item.text;
    QString shortcut;
    if (const qsizetype tab = text.indexOf(u'\t'); tab >= 0) {
        shortcut = text.mid(tab + 1);
        text.truncate(tab);
    }
    painter->setFont(item.font);
    painter->setPen(palette.color(group, QPalette::WindowText));
    const QRect textRect(QPoint(textLeft, rect.top()), QPoint(rect.right() - arrowRoom, rect.bottom()));
    int flags = Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextDontClip | Qt::TextShowMnemonic;
    if (!styleHint(SH_UnderlineShortcut, &item, widget))
        flags |= Qt::TextHideMnemonic;
    painter->drawText(textRect, flags | Qt::AlignLeft, text);
    if (!shortcut.isEmpty())
        painter->drawText(textRect, flags | Qt::AlignRight, shortcut);

    if (item.menuItemType == QStyleOptionMenuItem::SubMenu) {
        QStyleOption arrow = item;
        arrow.rect = QRect(rect.right() - 14, rect.center().y() - 4, 9, 9);
        arrow.state = enabled ? State_Enabled : State_None;
        proxy()->drawPrimitive(PE_IndicatorArrowRight, &arrow, painter, widget);
    }
    painter->restore();
}

void OfficeXpStyle::drawMenuBarItem(const QStyleOptionMenuItem &item, QPainter *painter, const QWidget *widget) const
{
    painter->save();
    const QPalette &palette = item.palette;
    const bool enabled = item.state & State_Enabled;
    const bool selected = item.state & State_Selected;
    painter->fillRect(item.rect, palette.window());
    if (selected && (item.state & State_Sunken))
        fillBox(painter, item.rect, palette.color(QPalette::Window), frameColour(palette)); // joins the open menu
    else if (selected && enabled)
        fillBox(painter, item.rect.adjusted(0, 1, 0, -1), hoverFill(palette), borderColour(palette));
    int flags = Qt::AlignCenter | Qt::TextSingleLine | Qt::TextDontClip | Qt::TextShowMnemonic;
    if (!styleHint(SH_UnderlineShortcut, &item, widget))
        flags |= Qt::TextHideMnemonic;
    proxy()->drawItemText(painter, item.rect, flags, palette, enabled, item.text, QPalette::WindowText);
    painter->restore();
}

void OfficeXpStyle::drawToolButton(const QStyleOptionToolButton &button, QPainter *painter, const QWidget *widget) const
{
    painter->save();
    const QRect body = subControlRect(CC_ToolButton, &button, SC_ToolButton, widget);
    const bool withArrow = button.subControls & SC_ToolButtonMenu;
    const bool hover = (button.state & State_MouseOver) && (button.state & State_Enabled);
    const bool down = (button.state & (State_Sunken | State_On)) && (button.activeSubControls & SC_ToolButton);

    QStyleOption panel = button;
    panel.rect = body;
    panel.state = button.state & ~(State_Sunken | State_On);
    if (down || (button.state & State_On))
        panel.state |= State_Sunken;
    proxy()->drawPrimitive(PE_PanelButtonTool, &panel, painter, widget);

    if (withArrow) {
        const QRect place = subControlRect(CC_ToolButton, &button, SC_ToolButtonMenu, widget);
        QStyleOption arrow = button;
        // One pixel over, so that the two boxes share their border.
        arrow.rect = place.adjusted(-1, 0, 0, 0);
        arrow.state = button.state & ~(State_Sunken | State_On);
        if ((button.activeSubControls & SC_ToolButtonMenu) && (button.state & State_Sunken))
            arrow.state |= State_Sunken;
        if (hover || (arrow.state & State_Sunken))
            proxy()->drawPrimitive(PE_PanelButtonTool, &arrow, painter, widget);
        arrow.rect = QRect(place.center().x() - 3, place.center().y() - 3, 7, 7);
        arrow.state = button.state & State_Enabled;
        proxy()->drawPrimitive(PE_IndicatorArrowDown, &arrow, painter, widget);
    }

    QStyleOptionToolButton label = button;
    label.rect = body;
    label.state &= ~(State_Sunken | State_On); // the flat label doesn't move
    proxy()->drawControl(CE_ToolButtonLabel, &label, painter, widget);

    if (button.state & State_HasFocus) {
        painter->setBrush(Qt::NoBrush);
        painter->setPen(QPen(button.palette.color(QPalette::Active, QPalette::WindowText), 1, Qt::DotLine));
        painter->drawRect(body.adjusted(2, 2, -3, -3));
    }
    painter->restore();
}

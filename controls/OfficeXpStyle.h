// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QProxyStyle>

class QStyleOptionMenuItem;
class QStyleOptionToolButton;

/// The Office XP drawing: flat menus with a strip for the pictures at the left, flat buttons that get a thin border and
/// a light fill of the highlight colour under the pointer, dotted grippers. All colours come from the palette, so that
/// it follows a dark desktop. What it doesn't draw itself is left to the desktop's style.
class OfficeXpStyle final : public QProxyStyle
{
    Q_OBJECT

public:
    OfficeXpStyle();

    /// The one object for all widgets of the program, which ends with it. For QWidget::setStyle(), which takes no
    /// ownership.
    static QStyle *shared();

    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                            const QWidget *widget) const override;
    QSize sizeFromContents(ContentsType type, const QStyleOption *option, const QSize &size,
                           const QWidget *widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption *option, const QWidget *widget) const override;

private:
    void drawMenuItem(const QStyleOptionMenuItem &item, QPainter *painter, const QWidget *widget) const;
    void drawMenuBarItem(const QStyleOptionMenuItem &item, QPainter *painter, const QWidget *widget) const;
    void drawToolButton(const QStyleOptionToolButton &button, QPainter *painter, const QWidget *widget) const;
};

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QProxyStyle>

/// The desktop's style, but for three things: no button of a dialog bears a picture, as the library's own do on some
/// desktops and ours never; the boxes to tick are seen on a dark desktop as well; and where the desktop has one ground
/// for everything, black or white, and the utmost contrast upon it, whatever has a border has it in the text's colour.
class DialogStyle final : public QProxyStyle
{
    Q_OBJECT

public:
    using QProxyStyle::QProxyStyle;

    using QProxyStyle::polish;
    void polish(QPalette &palette) override;
    int styleHint(StyleHint hint, const QStyleOption *option = nullptr, const QWidget *widget = nullptr,
                  QStyleHintReturn *returnData = nullptr) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget = nullptr) const override;
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget = nullptr) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                            const QWidget *widget = nullptr) const override;

private:
    bool needsFrames(const QStyleOption &option) const;
};

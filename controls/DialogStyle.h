// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QProxyStyle>

/// The desktop's style, but for two things: no button of a dialog bears a picture, as the library's own do on some
/// desktops and ours never, and the boxes to tick are seen on a dark desktop as well.
class DialogStyle final : public QProxyStyle
{
    Q_OBJECT

public:
    using QProxyStyle::QProxyStyle;

    int styleHint(StyleHint hint, const QStyleOption *option = nullptr, const QWidget *widget = nullptr,
                  QStyleHintReturn *returnData = nullptr) const override;
    void drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                       const QWidget *widget = nullptr) const override;
};

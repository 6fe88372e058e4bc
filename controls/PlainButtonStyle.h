// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QProxyStyle>

/// The desktop's style, but for the pictures that it puts on some buttons of the library's dialogs: all dialogs have
/// buttons of one look, without.
class PlainButtonStyle final : public QProxyStyle
{
    Q_OBJECT

public:
    using QProxyStyle::QProxyStyle;

    int styleHint(StyleHint hint, const QStyleOption *option = nullptr, const QWidget *widget = nullptr,
                  QStyleHintReturn *returnData = nullptr) const override;
};

// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/PlainButtonStyle.h"

int PlainButtonStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                                QStyleHintReturn *returnData) const
{
    return hint == SH_DialogButtonBox_ButtonsHaveIcons ? 0 : QProxyStyle::styleHint(hint, option, widget, returnData);
}

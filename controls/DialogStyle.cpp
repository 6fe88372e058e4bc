// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/DialogStyle.h"

#include "platform/Literals.h"

#include <QStyleOption>

namespace {

template <class Option>
Option withSeenRim(const QStyleOption &option)
{
    Option copy = *qstyleoption_cast<const Option *>(&option);
    copy.palette.setColor(QPalette::Window, copy.palette.color(QPalette::WindowText));
    return copy;
}

} // namespace

int DialogStyle::styleHint(StyleHint hint, const QStyleOption *option, const QWidget *widget,
                           QStyleHintReturn *returnData) const
{
    return hint == SH_DialogButtonBox_ButtonsHaveIcons ? 0 : QProxyStyle::styleHint(hint, option, widget, returnData);
}

void DialogStyle::drawPrimitive(PrimitiveElement element, const QStyleOption *option, QPainter *painter,
                                const QWidget *widget) const
{
    // The library's style takes a shade darker than the window for the rim, which on a dark one is the window's own.
    const QPalette &palette = option->palette;
    const bool isDark = palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
    const bool isBox = element == PE_IndicatorCheckBox || element == PE_IndicatorRadioButton;
    if (isDark && isBox && baseStyle()->name() == u"fusion"_s) {
        if (qstyleoption_cast<const QStyleOptionViewItem *>(option)) {
            const auto seen = withSeenRim<QStyleOptionViewItem>(*option);
            QProxyStyle::drawPrimitive(element, &seen, painter, widget);
            return;
        }
        if (qstyleoption_cast<const QStyleOptionButton *>(option)) {
            const auto seen = withSeenRim<QStyleOptionButton>(*option);
            QProxyStyle::drawPrimitive(element, &seen, painter, widget);
            return;
        }
    }
    QProxyStyle::drawPrimitive(element, option, painter, widget);
}

// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/DialogStyle.h"

#include "platform/Literals.h"

#include <QPainter>
#include <QStyleOption>

#include <cstdlib>

namespace {

template <class Option>
Option withSeenRim(const QStyleOption &option)
{
    Option copy = *qstyleoption_cast<const Option *>(&option);
    copy.palette.setColor(QPalette::Window, copy.palette.color(QPalette::WindowText));
    return copy;
}

/// The one ground of windows, boxes and buttons, and how far the text stands off from it; of 255.
constexpr int sameGround = 8;
constexpr int utmostContrast = 230;
constexpr int leastContrast = 80;

bool isHighContrast(const QPalette &palette)
{
    const auto lightness = [&palette](QPalette::ColorRole role) {
        return palette.color(QPalette::Active, role).lightness();
    };
    const int window = lightness(QPalette::Window);
    return std::abs(lightness(QPalette::Base) - window) <= sameGround &&
           std::abs(lightness(QPalette::Button) - window) <= sameGround &&
           std::abs(lightness(QPalette::WindowText) - window) >= utmostContrast;
}

/// Twice as thick around what has the focus.
void drawFrame(QPainter *painter, const QStyleOption &option)
{
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing, false);
    painter->setBrush(Qt::NoBrush);
    const bool isFocused = option.state.testFlag(QStyle::State_HasFocus);
    painter->setPen(option.palette.color(isFocused ? QPalette::Highlight : QPalette::WindowText));
    painter->drawRect(option.rect.adjusted(0, 0, -1, -1));
    if (isFocused)
        painter->drawRect(option.rect.adjusted(1, 1, -2, -2));
    painter->restore();
}

} // namespace

/// What is disabled is seen as well: some desktops make its colours by darkening those of the rest, until black is
/// left.
void DialogStyle::polish(QPalette &palette)
{
    QProxyStyle::polish(palette);
    if (!isHighContrast(palette))
        return;
    const QColor window = palette.color(QPalette::Active, QPalette::Window);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        if (std::abs(palette.color(QPalette::Disabled, role).lightness() - window.lightness()) < leastContrast)
            palette.setColor(QPalette::Disabled, role, Qt::gray);
}

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
    switch (element) {
    case PE_Frame:
    case PE_FrameGroupBox:
    case PE_FrameLineEdit:
    case PE_FrameMenu:
    case PE_FrameTabWidget:
    case PE_PanelButtonCommand:
    case PE_PanelButtonTool:
        if (needsFrames(*option))
            drawFrame(painter, *option);
        return;
    default:
        return;
    }
}

void DialogStyle::drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                              const QWidget *widget) const
{
    QProxyStyle::drawControl(element, option, painter, widget);
    const bool hasBorder =
        element == CE_TabBarTabShape || element == CE_HeaderSection || element == CE_ProgressBarGroove;
    if (hasBorder && needsFrames(*option))
        drawFrame(painter, *option);
}

void DialogStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex *option, QPainter *painter,
                                     const QWidget *widget) const
{
    QProxyStyle::drawComplexControl(control, option, painter, widget);
    if (control == CC_ComboBox && needsFrames(*option))
        drawFrame(painter, *option);
}

/// Other styles than the library's know such desktops.
bool DialogStyle::needsFrames(const QStyleOption &option) const
{
    return isHighContrast(option.palette) && baseStyle()->name() == u"fusion"_s;
}

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "controls/UpDown.h"
#include "platform/Literals.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QGridLayout>
#include <QLabel>
#include <QMetaEnum>
#include <QRegularExpression>
#include <QTabBar>

#include <cmath>

/// Tells a window as text: each of its controls, and how they are laid out. Nothing of it depends on a font: what is
/// measured by one is told in its characters and lines.
namespace DialogDump {

template <class Flags>
QString words(Flags flags)
{
    return QString::fromLatin1(QMetaEnum::fromType<Flags>().valueToKeys(int(flags)));
}

/// A length in so many `units` of a font, or in pixels where it's no whole number of them.
inline QString measured(int length, int unit, const QString &name)
{
    return length % unit == 0 ? QString::number(length / unit) + name : QString::number(length) + u" px"_s;
}

inline QString nameOf(const QWidget &widget)
{
    const auto *const label = qobject_cast<const QLabel *>(&widget);
    if (!widget.objectName().isEmpty() || !label)
        return widget.objectName().isEmpty() ? u'<' + QString::fromLatin1(widget.metaObject()->className()) + u'>'
                                             : widget.objectName();
    return label->text().isEmpty() ? u"<picture>"_s : u'"' + label->text() + u'"';
}

inline QStringList sizesOf(const QWidget &widget)
{
    const int character = widget.fontMetrics().averageCharWidth();
    const int line = QFontMetrics(QApplication::font()).lineSpacing();
    const QSizePolicy policy = widget.sizePolicy();
    const double scale = widget.font().pointSizeF() / QApplication::font().pointSizeF();
    const auto size = [](const QString &bound, int length, int unit, const QString &name) {
        return length > 0 && length < QWIDGETSIZE_MAX ? bound + measured(length, unit, name) : QString();
    };
    return {size(u"at least "_s, widget.minimumWidth(), character, u" characters"_s),
            size(u"at least "_s, widget.minimumHeight(), line, u" lines"_s),
            size(u"at most "_s, widget.maximumWidth(), character, u" characters"_s),
            size(u"at most "_s, widget.maximumHeight(), line, u" lines"_s),
            policy.retainSizeWhenHidden() ? u"keeps its place"_s : QString(),
            policy.horizontalPolicy() == QSizePolicy::Ignored ? u"any width"_s : QString(),
            policy == QSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed) ? u"never grows"_s : QString(),
            std::abs(scale - 1) > 0.1 ? u"font x %1"_s.arg(scale, 0, 'f', 1) : QString(),
            widget.font().bold() ? u"bold"_s : QString(),
            widget.font().underline() ? u"underlined"_s : QString()};
}

/// What is special about a control of its kind.
inline QStringList traitsOf(QWidget &widget)
{
    QStringList parts;
    for (const char *const name :
         {"text", "placeholderText", "toolTip", "styleSheet", "checked", "default", "autoDefault", "echoMode",
          "clearButtonEnabled", "tabChangesFocus", "readOnly", "verticalScrollBarPolicy", "textFormat", "wordWrap",
          "headerHidden", "rootIsDecorated", "uniformRowHeights", "expandsOnDoubleClick"})
        if (const QVariant value = widget.property(name); value.typeId() == QMetaType::QString)
            parts += value.toString();
        else if (value.toInt() != 0)
            parts +=
                QString::fromLatin1(name) + (value.toInt() > 1 ? u' ' + QString::number(value.toInt()) : QString());
    if (const auto *const button = qobject_cast<const QAbstractButton *>(&widget);
        button && !button->icon().pixmap(16, 16).isNull()) {
        const QSize size = button->iconSize();
        const bool isByLine = std::abs(2 * size.height() - 3 * widget.fontMetrics().height()) <= 1;
        parts += u"picture %1 wide for 1 high, "_s.arg(size.width() / double(size.height())) +
                 (isByLine ? u"a line and a half"_s : QString::number(size.height()) + u" px"_s);
    }
    const auto *const tabs = qobject_cast<const QTabBar *>(&widget);
    for (int i = 0; tabs && i < tabs->count(); ++i)
        parts += tabs->tabText(i);
    const auto *const list = qobject_cast<const QComboBox *>(&widget);
    for (int i = 0; list && i < list->count(); ++i)
        parts += list->itemText(i);
    if (const auto *const label = qobject_cast<const QLabel *>(&widget); label && !label->pixmap().isNull())
        parts += measured(label->pixmap().height(), QFontMetrics(QApplication::font()).height(), u" lines high"_s);
    if (auto *const upDown = qobject_cast<UpDown *>(&widget)) {
        const int first = upDown->value();
        upDown->stepBy(-9999);
        const int least = upDown->value();
        upDown->stepBy(1);
        const int step = upDown->value() - least;
        upDown->stepBy(9999);
        parts += u"%1 in %2 to %3 by %4"_s.arg(first).arg(least).arg(upDown->value()).arg(step);
    }
    return parts;
}

inline QString told(QWidget &widget, const QWidget &window)
{
    QStringList parts = traitsOf(widget) + sizesOf(widget);
    parts += {widget.isEnabledTo(&window) ? QString() : u"disabled"_s, widget.isHidden() ? u"hidden"_s : QString(),
              widget.cursor().shape() == Qt::PointingHandCursor ? u"hand"_s : QString(),
              widget.focusPolicy() == Qt::ClickFocus ? u"not by Tab"_s : QString()};
    parts.removeAll(QString());
    parts.removeDuplicates();
    return nameOf(widget) + u": "_s + parts.join(u" | "_s) + u'\n';
}

/// A line for each layout and what it holds.
inline QString told(const QLayout &layout, const QString &first, const QString &indent)
{
    const auto *const grid = qobject_cast<const QGridLayout *>(&layout);
    const auto *const line = qobject_cast<const QBoxLayout *>(&layout);
    const QStyle &style = *layout.parentWidget()->style();
    const QMargins margins = layout.contentsMargins();
    const QMargins usual(style.pixelMetric(QStyle::PM_LayoutLeftMargin), style.pixelMetric(QStyle::PM_LayoutTopMargin),
                         style.pixelMetric(QStyle::PM_LayoutRightMargin),
                         style.pixelMetric(QStyle::PM_LayoutBottomMargin));
    QString lines = first + QString::fromLatin1(layout.metaObject()->className());
    if (margins != usual)
        lines +=
            u" margins %1 %2 %3 %4"_s.arg(margins.left()).arg(margins.top()).arg(margins.right()).arg(margins.bottom());
    lines += grid ? u" spacing %1 %2"_s.arg(grid->horizontalSpacing()).arg(grid->verticalSpacing())
                  : u" spacing %1"_s.arg(layout.spacing());
    lines += layout.sizeConstraint() == QLayout::SetFixedSize ? u" fixed"_s : QString();
    for (int i = 0; grid && i < grid->rowCount(); ++i)
        lines += grid->rowStretch(i) > 0 ? u" row %1 takes %2"_s.arg(i).arg(grid->rowStretch(i)) : QString();
    for (int i = 0; grid && i < grid->columnCount(); ++i)
        lines += grid->columnStretch(i) > 0 ? u" column %1 takes %2"_s.arg(i).arg(grid->columnStretch(i)) : QString();
    lines += u'\n';
    for (int i = 0; i < layout.count(); ++i) {
        QLayoutItem *const item = layout.itemAt(i);
        QString place = indent + u"  "_s;
        if (grid) {
            int row = 0, column = 0, rows = 0, columns = 0;
            grid->getItemPosition(i, &row, &column, &rows, &columns);
            place += u"%1,%2 "_s.arg(row).arg(column) +
                     (rows * columns > 1 ? u"%1x%2 "_s.arg(rows).arg(columns) : QString());
        }
        if (line && line->stretch(i) > 0)
            place += u"takes %1 "_s.arg(line->stretch(i));
        if (item->alignment())
            place += words(item->alignment()) + u' ';
        if (item->widget())
            lines += place + nameOf(*item->widget()) + u'\n';
        else if (item->layout())
            lines += told(*item->layout(), place, indent + u"  "_s);
        else
            lines += place + (item->expandingDirections() ? u"the rest"_s : u"%1 px"_s.arg(item->sizeHint().width())) +
                     u'\n';
    }
    return lines;
}

/// All of a window. Widgets of the library's own are left out, beside the tabs.
inline QString told(QWidget &window)
{
    QString lines = u"["_s + window.windowTitle() + u"] "_s + words(window.windowFlags()) +
                    (window.isModal() ? u" modal\n"_s : u"\n"_s);
    QStringList order;
    const QWidgetList widgets = window.findChildren<QWidget *>();
    for (QWidget *const widget : widgets) {
        const QString name = widget->objectName();
        const bool isOfTheLibrary = name.isEmpty() ? !widget->inherits("QLabel") && !widget->inherits("QAbstractButton")
                                                   : name.startsWith(u"qt_"_s) && !widget->inherits("QTabBar");
        const QWidget *const outer = widget->parentWidget();
        if (!isOfTheLibrary && !outer->inherits("QTabBar") && !outer->inherits("QToolBar") &&
            !outer->inherits("QComboBox") && !outer->inherits("QLineEdit"))
            lines += told(*widget, window);
    }
    const QList<QAction *> actions = window.findChildren<QAction *>(QRegularExpression(u"^[a-z]+$"_s));
    for (const QAction *const action : actions)
        lines += action->objectName() + u": "_s + action->text() + u' ' + action->shortcut().toString() +
                 (action->isEnabled() ? u""_s : u" disabled"_s) +
                 (action->icon().pixmap(16, 16).isNull() ? u""_s : u" with picture"_s) + u'\n';
    QWidget *next = &window;
    while ((next = next->nextInFocusChain()) != &window)
        if ((next->focusPolicy() & Qt::TabFocus) == Qt::TabFocus && !next->focusProxy() && next->isEnabledTo(&window) &&
            !qobject_cast<QTabBar *>(next->parentWidget()))
            order += nameOf(*next);
    lines += u"Tab: "_s + order.join(u", "_s) + u'\n';
    for (const QWidget *const widget : widgets)
        if (widget->layout() && !widget->objectName().startsWith(u"qt_"_s) && !widget->inherits("QToolBar") &&
            !widget->inherits("QComboBoxPrivateContainer"))
            lines += u"in "_s + nameOf(*widget) + u'\n' + told(*widget->layout(), u"  "_s, u"  "_s);
    return lines +
           (window.layout() && !window.inherits("QMainWindow") ? told(*window.layout(), QString(), QString())
                                                               : QString()) +
           u'\n';
}

} // namespace DialogDump

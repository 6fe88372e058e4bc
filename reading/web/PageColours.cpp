// SPDX-License-Identifier: GPL-3.0-or-later

#include "reading/web/PageColours.h"

#include "platform/Literals.h"

#include <QEvent>
#include <QPalette>
#include <QWidget>

namespace {

/// `share` of the second colour, from 0 to 1.
QColor mixed(const QColor &one, const QColor &other, double share)
{
    const auto part = [share](int from, int to) { return qRound(from + (to - from) * share); };
    return {part(one.red(), other.red()), part(one.green(), other.green()), part(one.blue(), other.blue())};
}

} // namespace

PageColours::PageColours(QWidget &widget) : m_widget(widget)
{
    widget.installEventFilter(this);
}

QColor PageColours::paper() const
{
    return m_widget.palette().color(QPalette::Active, QPalette::Base);
}

QString PageColours::rule() const
{
    const QColor page = paper();
    const QColor text = m_widget.palette().color(QPalette::Active, QPalette::Text);
    const bool dark = qGray(page.rgb()) < qGray(text.rgb());
    // Links aren't the palette's: few desktops choose a colour for them that can be read on a dark page.
    return u":root { --scheme: %1; --page: %2; --text: %3; --quiet: %4; --rule: %5; --soft: %6; "
           "--link: %7; --seen: %8; --accent: %9 }"_s.arg(
               dark ? u"dark"_s : u"light"_s, page.name(), text.name(), mixed(text, page, 0.35).name(),
               mixed(text, page, 0.85).name(), mixed(text, page, 0.95).name(), dark ? u"#7db4f0"_s : u"#1f66b5"_s,
               dark ? u"#bf9be0"_s : u"#7a4ea3"_s, dark ? u"#f09a58"_s : u"#d96c1f"_s);
}

bool PageColours::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        Q_EMIT changed();
    return QObject::eventFilter(watched, event);
}

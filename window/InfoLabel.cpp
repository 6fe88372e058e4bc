// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/InfoLabel.h"

#include "platform/Literals.h"

#include <QPainter>
#include <QTextLayout>

#include <algorithm>

namespace {

constexpr int smallestFont = 6; // pixels
constexpr int longestTitle = 1000;

/// Draws `text`, wrapped into at most `maxLines`, and returns where the next one begins.
int drawParagraph(QPainter &painter, const QString &text, int top, int width, int maxLines)
{
    const QFontMetrics metrics = painter.fontMetrics();
    const int lineHeight = metrics.lineSpacing();
    const QString shown = text.left(longestTitle);
    QTextLayout layout(shown, painter.font());
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    int y = top;
    for (int i = 0; i < maxLines; ++i, y += lineHeight) {
        QTextLine line = layout.createLine();
        if (!line.isValid())
            break;
        line.setLineWidth(width);
        const int start = line.textStart();
        QString part = shown.mid(start, line.textLength());
        if (i + 1 == maxLines)
            part = metrics.elidedText(shown.mid(start), Qt::ElideRight, width);
        painter.drawText(QRect(0, y, width, lineHeight), Qt::AlignLeft | Qt::AlignTop | Qt::TextSingleLine, part);
    }
    layout.endLayout();
    return std::max(y, top + lineHeight);
}

} // namespace

InfoLabel::InfoLabel(QWidget *parent) : QLabel(parent)
{
    setTextFormat(Qt::PlainText);
}

QFont InfoLabel::fittingFont(const QFont &wanted, const QStringList &lines, const QSize &room)
{
    QFont font = wanted;
    const auto fits = [&] {
        const QFontMetrics metrics(font);
        return metrics.lineSpacing() * lines.size() <= room.height() &&
               std::all_of(lines.begin(), lines.end(),
                           [&](const QString &line) { return metrics.horizontalAdvance(line) <= room.width(); });
    };
    for (int size = QFontInfo(wanted).pixelSize(); size > smallestFont && !fits(); --size)
        font.setPixelSize(size - 1);
    return font;
}

QSize InfoLabel::room() const
{
    return {std::min(width(), parentWidget()->width() - 2 * x()), height()};
}

void InfoLabel::paintEvent(QPaintEvent *)
{
    const QStringList lines = text().split(u"\r\n"_s);
    const QString title = lines.mid(1, lines.size() - 3).join(u' ');
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::WindowText));
    painter.setFont(fittingFont(font(), {lines.first(), QString(), QString(), lines.last()}, room()));
    const int lineHeight = painter.fontMetrics().lineSpacing();
    const int forTitle = std::max(1, room().height() / std::max(1, lineHeight) - 3);
    int y = drawParagraph(painter, lines.first(), 0, room().width(), 1);
    y = drawParagraph(painter, title, y, room().width(), forTitle);
    drawParagraph(painter, lines.last(), y + lineHeight, room().width(), 1);
}

// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/SplitBar.h"

#include "controls/ScreenReader.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QtMath>

#include <algorithm>

SplitBar::SplitBar(Qt::Orientation moves, ScreenScale scale, std::function<SplitBounds()> bounds, QWidget *parent)
    : QWidget(parent), m_moves(moves), m_scale(scale), m_bounds(std::move(bounds))
{
    setCursor(moves == Qt::Horizontal ? Qt::SplitHCursor : Qt::SplitVCursor);
    setFocusPolicy(Qt::TabFocus);
    ScreenReader::setRole(*this, QAccessible::Splitter,
                          {[this] { return position(); }, [this] { return lowest(); }, [this] { return highest(); },
                           [this](int pixels) { moveAndRelease(pixels); }, keyStep});
}

double SplitBar::twipsPerPixel() const
{
    return m_moves == Qt::Horizontal ? m_scale.twipsPerPixelX : m_scale.twipsPerPixelY;
}

int SplitBar::position() const
{
    return m_moves == Qt::Horizontal ? x() : y();
}

double SplitBar::positionTwips() const
{
    return position() * twipsPerPixel();
}

int SplitBar::lowest() const
{
    return qCeil(m_bounds().lowest / twipsPerPixel());
}

int SplitBar::highest() const
{
    return std::max(lowest(), qFloor(m_bounds().highest / twipsPerPixel()));
}

void SplitBar::moveAndRelease(int pixels)
{
    moveTo(std::clamp(pixels, lowest(), highest()));
    Q_EMIT released();
}

void SplitBar::moveTo(int pixels)
{
    if (!m_bounds().allows(pixels * twipsPerPixel()))
        return;
    if (m_moves == Qt::Horizontal)
        move(pixels, y());
    else
        move(x(), pixels);
}

void SplitBar::paintEvent(QPaintEvent *)
{
    QPainter(this).fillRect(rect(), palette().color(m_dragging || hasFocus() ? QPalette::Dark : QPalette::Button));
}

void SplitBar::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_dragging = true;
    raise();
    update();
}

void SplitBar::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_dragging)
        return;
    const QPoint pointer = event->position().toPoint();
    moveTo(position() + (m_moves == Qt::Horizontal ? pointer.x() : pointer.y()));
}

void SplitBar::mouseReleaseEvent(QMouseEvent *)
{
    if (!m_dragging)
        return;
    m_dragging = false;
    update();
    Q_EMIT released();
}

void SplitBar::keyPressEvent(QKeyEvent *event)
{
    const int back = m_moves == Qt::Horizontal ? Qt::Key_Left : Qt::Key_Up;
    const int forth = m_moves == Qt::Horizontal ? Qt::Key_Right : Qt::Key_Down;
    if (event->key() != back && event->key() != forth) {
        QWidget::keyPressEvent(event);
        return;
    }
    moveAndRelease(position() + (event->key() == back ? -keyStep : keyStep));
}

void SplitBar::moveEvent(QMoveEvent *)
{
    ScreenReader::tellValue(*this, position());
}

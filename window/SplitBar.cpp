// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/SplitBar.h"

#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QtMath>

#include <algorithm>

namespace {

class AccessibleSplitBar final : public QAccessibleWidget, public QAccessibleValueInterface
{
public:
    explicit AccessibleSplitBar(SplitBar *bar) : QAccessibleWidget(bar, QAccessible::Splitter) {}

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::ValueInterface)
            return static_cast<QAccessibleValueInterface *>(this);
        return QAccessibleWidget::interface_cast(type);
    }
    QVariant currentValue() const override { return bar().position(); }
    void setCurrentValue(const QVariant &value) override { bar().moveAndRelease(value.toInt()); }
    QVariant minimumValue() const override { return bar().lowest(); }
    QVariant maximumValue() const override { return bar().highest(); }
    QVariant minimumStepSize() const override { return SplitBar::keyStep; }

private:
    SplitBar &bar() const { return *static_cast<SplitBar *>(widget()); }
};

QAccessibleInterface *makeAccessible(const QString &, QObject *object)
{
    auto *bar = qobject_cast<SplitBar *>(object);
    return bar ? new AccessibleSplitBar(bar) : nullptr;
}

} // namespace

SplitBar::SplitBar(Qt::Orientation moves, ScreenScale scale, std::function<SplitBounds()> bounds, QWidget *parent)
    : QWidget(parent), m_moves(moves), m_scale(scale), m_bounds(std::move(bounds))
{
    setCursor(moves == Qt::Horizontal ? Qt::SplitHCursor : Qt::SplitVCursor);
    setFocusPolicy(Qt::TabFocus);
    [[maybe_unused]] static const bool isKnown = [] {
        QAccessible::installFactory(makeAccessible);
        return true;
    }();
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
    QAccessibleValueChangeEvent moved(this, position());
    QAccessible::updateAccessibility(&moved);
}

// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/UpDown.h"

#include "controls/ScreenReader.h"
#include "platform/Literals.h"
#include "platform/Numbers.h"

#include <QKeyEvent>
#include <QToolButton>

#include <algorithm>
#include <cmath>

namespace {

QToolButton *newArrow(QWidget *parent, Qt::ArrowType arrow, const QString &name)
{
    auto *button = new QToolButton(parent);
    button->setArrowType(arrow);
    button->setAutoRepeat(true);
    button->setFocusPolicy(Qt::NoFocus); // the keyboard steps in the box
    button->setAccessibleName(name);
    return button;
}

} // namespace

UpDown::UpDown(QLineEdit *buddy, int min, int max, int step, int value, QWidget *parent)
    : QWidget(parent), m_buddy(buddy), m_up(newArrow(this, Qt::UpArrow, u"Augmenter"_s)),
      m_down(newArrow(this, Qt::DownArrow, u"Diminuer"_s)), m_min(min), m_max(max), m_step(step),
      m_value(std::clamp(value, min, max))
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    buddy->installEventFilter(this);
    ScreenReader::setRole(*this, QAccessible::SpinBox,
                          {[this] { return standing(); }, [this] { return m_min; }, [this] { return m_max; },
                           [this](int wanted) { setValue(wanted); }, step, buddy});
    connect(m_up, &QToolButton::clicked, this, [this] { stepBy(1); });
    connect(m_down, &QToolButton::clicked, this, [this] { stepBy(-1); });
}

void UpDown::setValue(int value)
{
    m_value = std::clamp(value, m_min, m_max);
    if (m_buddy)
        m_buddy->setText(QString::number(m_value));
    ScreenReader::tellValue(*this, m_value);
}

int UpDown::standing() const
{
    if (!m_buddy || !Numbers::isNumeric(m_buddy->text()))
        return m_value;
    // The box may hold any number, far beyond the range.
    return int(std::clamp(std::trunc(Numbers::toDouble(m_buddy->text())), double(m_min), double(m_max)));
}

void UpDown::stepBy(int steps)
{
    if (!isEnabled() || !m_buddy || !m_buddy->isEnabled() || m_buddy->isReadOnly())
        return;
    setValue(int(std::clamp(standing() + double(steps) * m_step, double(m_min), double(m_max))));
    m_buddy->selectAll();
}

QSize UpDown::sizeHint() const
{
    return {18, m_buddy ? m_buddy->sizeHint().height() : 24};
}

bool UpDown::eventFilter(QObject *watched, QEvent *event)
{
    // The type first: a box that is being destroyed still sends events, but is no text box any more.
    if (event->type() == QEvent::KeyPress && watched == m_buddy) {
        const auto *key = static_cast<QKeyEvent *>(event);
        const bool plain = (key->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
        if (plain && (key->key() == Qt::Key_Up || key->key() == Qt::Key_Down)) {
            stepBy(key->key() == Qt::Key_Up ? 1 : -1);
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

void UpDown::resizeEvent(QResizeEvent *)
{
    const int half = height() / 2;
    m_up->setGeometry(0, 0, width(), half);
    m_down->setGeometry(0, half, width(), height() - half);
}

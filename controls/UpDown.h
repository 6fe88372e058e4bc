// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QLineEdit>
#include <QPointer>
#include <QWidget>

class QToolButton;

/// Two arrow buttons that change the number in a text box. The box itself takes whatever is typed: only a step of the
/// arrows, or of the Up and Down keys in the box, brings the number into the range.
class UpDown : public QWidget
{
    Q_OBJECT

public:
    /// `buddy` is the text box (not owned); its text stays as it is until the first step. Every step counts from the
    /// number in the box, or from `value` when none stands there. The steps end at `min` and `max`.
    UpDown(QLineEdit *buddy, int min, int max, int step, int value, QWidget *parent = nullptr);

    /// The last number set or stepped to.
    int value() const { return m_value; }

    /// Brings `value` into the range and writes it into the box.
    void setValue(int value);

    /// Steps so many times up (negative: down). Nothing happens while this control or the box is disabled.
    void stepBy(int steps);

    QSize sizeHint() const override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    int standing() const; ///< the number from which the next step counts

    QPointer<QLineEdit> m_buddy;
    QToolButton *m_up;
    QToolButton *m_down;
    int m_min;
    int m_max;
    int m_step;
    int m_value;
};

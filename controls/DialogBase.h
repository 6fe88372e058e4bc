// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QDialog>

/// What the dialogs of the program have in common.
class DialogBase : public QDialog
{
    Q_OBJECT

public:
    /// `frame` is the window to centre on; the dialog is modal to it.
    DialogBase(const QString &caption, QWidget *frame);

    /// Puts the dialog over its frame: left is the frame's left plus half the difference of the widths, top likewise;
    /// each half is a whole-number division. Kept on the screen that the frame is on. Done by itself when the dialog is
    /// first shown.
    void centre();

    /// The place of `size` centred over `frame`, by that rule.
    static QPoint centredPosition(const QRect &frame, const QSize &size);

protected:
    void showEvent(QShowEvent *event) override;

private:
    QWidget *m_frame;
    bool m_centred = false;
};

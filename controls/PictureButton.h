// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QToolButton>

/// A picture that acts as a button: reached with Tab, pressed by click, the space bar or Enter.
class PictureButton : public QToolButton
{
    Q_OBJECT

public:
    /// `iconName` is the name of one of the program's icons; `text` is what it does, shown as tip and told to screen
    /// readers.
    PictureButton(const QString &iconName, const QString &text, QWidget *parent = nullptr);

protected:
    void keyPressEvent(QKeyEvent *event) override;
};

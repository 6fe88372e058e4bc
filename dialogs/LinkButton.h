// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QPushButton>

/// A button that looks like a link: underlined text, without a frame. It can be reached and pressed with the keyboard.
class LinkButton final : public QPushButton
{
    Q_OBJECT

public:
    explicit LinkButton(const QString &text, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;
};

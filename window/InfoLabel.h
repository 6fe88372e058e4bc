// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QLabel>

/// The text of the popup: a first line, a title, an empty line and a last one, separated by CR LF. The title may be of
/// any length and hold such separators: it is wrapped, and gives way with an ellipsis so that the last line stays in
/// sight. A font that the label has no room for is taken smaller.
class InfoLabel : public QLabel
{
    Q_OBJECT

public:
    explicit InfoLabel(QWidget *parent);

    /// `wanted`, or the largest size below it in which each of `lines` goes into `room` (pixels) whole, one below the
    /// other; an empty line stands for one whose length doesn't matter.
    static QFont fittingFont(const QFont &wanted, const QStringList &lines, const QSize &room);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    /// What the window leaves uncovered, which may be less than the label itself.
    QSize room() const;
};

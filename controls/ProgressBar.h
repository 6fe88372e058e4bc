// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QProgressBar>

/// A bar from 0 to 100.
class ProgressBar : public QProgressBar
{
    Q_OBJECT

public:
    explicit ProgressBar(QWidget *parent = nullptr);

    /// Shows `value`; what lies outside 0 to 100 is brought to the nearer end.
    void setValue(int value);
};

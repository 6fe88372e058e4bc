// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/ProgressBar.h"

#include "platform/Literals.h"

#include <algorithm>

ProgressBar::ProgressBar(QWidget *parent) : QProgressBar(parent)
{
    setRange(0, 100);
    setTextVisible(false);
    setAccessibleName(u"Progression"_s);
}

void ProgressBar::setValue(int value)
{
    QProgressBar::setValue(std::clamp(value, 0, 100));
}

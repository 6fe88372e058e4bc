#include "controls/ProgressBar.h"

#include <algorithm>

ProgressBar::ProgressBar(QWidget *parent) : QProgressBar(parent)
{
    setRange(0, 100);
    setTextVisible(false);
    setAccessibleName(QStringLiteral("Progression"));
}

void ProgressBar::setValue(int value)
{
    QProgressBar::setValue(std::clamp(value, 0, 100));
}

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

class QWidget;

/// Asks the user for one line of text; "" when the user cancels.
QString inputBox(QWidget *parent, const QString &prompt, const QString &title);

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

class QUrl;
class QWidget;

/// The boxes in which a page's scripts speak to the user: named after the page, in French, texts as plain text and no
/// longer than can be read. `parent` may end while a box is open, which then counts as cancelled.
namespace ScriptBoxes {

void alert(QWidget *parent, const QUrl &page, const QString &text);

/// True for "OK".
bool confirm(QWidget *parent, const QUrl &page, const QString &text);

/// True for "OK"; `result` is then what was typed in place of `standard`.
bool prompt(QWidget *parent, const QUrl &page, const QString &text, const QString &standard, QString &result);

} // namespace ScriptBoxes

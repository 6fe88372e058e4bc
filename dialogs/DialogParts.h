// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QList>
#include <QString>

class QDialog;
class QGridLayout;
class QHBoxLayout;
class QLabel;
class QLayout;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QWidget;

/// The parts that all dialogs are put together from. Each widget bears its name, by which tests find it; those of a
/// control array are called "name_0", "name_1" and so on.
namespace DialogParts {

/// Distance of content and buttons from the dialog's edges and of the buttons from one another, in pixels.
constexpr int edge = 10;

/// `widget`, after it got its name.
template <class Widget>
Widget *named(Widget *widget, const QString &name)
{
    widget->setObjectName(name);
    return widget;
}

QString arrayName(const QString &name, int index);

QPushButton *button(const QString &name, const QString &caption);
QLineEdit *lineEdit(const QString &name);

/// A box of one line that shows asterisks.
QLineEdit *passwordBox(const QString &name);

/// A box for a short number.
QLineEdit *numberBox(const QString &name);

/// A box of several lines. Tab leaves it.
QPlainTextEdit *textBox(const QString &name);

/// Puts a text from a feed or a file into a box of several lines, in a time that grows with its length only. A box that
/// is read only shows 65,535 characters of it; one with a word of thousands of characters doesn't wrap.
void showText(QPlainTextEdit &box, const QString &text);

/// A label of plain text, the caption of `box` for the eye and for screen readers.
QLabel *label(const QString &caption, QWidget *box);

/// A row of the grid: the label of `box`, then `box`.
QLabel *addRow(QGridLayout &grid, const QString &caption, QWidget *box);

/// A row that holds its buttons at its right end, the last one in the corner.
QHBoxLayout *buttonRow(const QList<QPushButton *> &buttons);

/// Lays the dialog out: `content` fills it above `buttons`, with `edge` all around. The dialog can't be made so small
/// that a button would leave it.
void layOut(QDialog &dialog, QWidget *content, QLayout *buttons);

} // namespace DialogParts

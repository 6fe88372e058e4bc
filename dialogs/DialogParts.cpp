// SPDX-License-Identifier: GPL-3.0-or-later

#include "dialogs/DialogParts.h"

#include "platform/Literals.h"

#include <QBoxLayout>
#include <QDialog>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>

namespace {
constexpr qsizetype maxShownText = 65535;
constexpr qsizetype maxWrappedWord = 5000;
} // namespace

QString DialogParts::arrayName(const QString &name, int index)
{
    return name + QLatin1Char('_') + QString::number(index);
}

QPushButton *DialogParts::button(const QString &name, const QString &caption)
{
    return named(new QPushButton(caption), name);
}

QLineEdit *DialogParts::lineEdit(const QString &name)
{
    auto *box = named(new QLineEdit, name);
    box->setMinimumWidth(28 * box->fontMetrics().averageCharWidth());
    return box;
}

QLineEdit *DialogParts::passwordBox(const QString &name)
{
    QLineEdit *const box = lineEdit(name);
    box->setEchoMode(QLineEdit::Password);
    box->setStyleSheet(u"lineedit-password-character: 42"_s);
    return box;
}

QLineEdit *DialogParts::numberBox(const QString &name)
{
    auto *box = named(new QLineEdit, name);
    box->setFixedWidth(10 * box->fontMetrics().averageCharWidth());
    return box;
}

QPlainTextEdit *DialogParts::textBox(const QString &name)
{
    auto *box = named(new QPlainTextEdit, name);
    box->setTabChangesFocus(true);
    box->setMinimumSize(28 * box->fontMetrics().averageCharWidth(), 4 * box->fontMetrics().lineSpacing());
    return box;
}

void DialogParts::showText(QPlainTextEdit &box, const QString &text)
{
    const QString shown = box.isReadOnly() ? text.left(maxShownText) : text;
    qsizetype word = 0;
    bool wraps = true;
    for (const QChar character : shown) {
        word = character.isSpace() ? 0 : word + 1;
        wraps = wraps && word <= maxWrappedWord;
    }
    // The time to break a word is the square of its length.
    box.setLineWrapMode(wraps ? QPlainTextEdit::WidgetWidth : QPlainTextEdit::NoWrap);
    box.setPlainText(shown);
}

QLabel *DialogParts::label(const QString &caption, QWidget *box)
{
    auto *label = new QLabel(caption);
    label->setTextFormat(Qt::PlainText);
    label->setBuddy(box);
    return label;
}

QLabel *DialogParts::addRow(QGridLayout &grid, const QString &caption, QWidget *box)
{
    const int row = grid.rowCount();
    QLabel *const shown = label(caption, box);
    const bool tall = qobject_cast<QPlainTextEdit *>(box) != nullptr;
    grid.addWidget(shown, row, 0, tall ? Qt::AlignTop : Qt::AlignVCenter);
    grid.addWidget(box, row, 1);
    return shown;
}

QHBoxLayout *DialogParts::buttonRow(const QList<QPushButton *> &buttons)
{
    auto *row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(edge);
    row->addStretch();
    for (QPushButton *const button : buttons)
        row->addWidget(button);
    return row;
}

void DialogParts::layOut(QDialog &dialog, QWidget *content, QLayout *buttons)
{
    auto *layout = new QVBoxLayout(&dialog);
    layout->setContentsMargins(edge, edge, edge, edge);
    layout->setSpacing(edge);
    layout->addWidget(content, 1);
    layout->addLayout(buttons);
}

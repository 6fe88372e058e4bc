// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/MessageBoxes.h"

#include "platform/Literals.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>

namespace {

QMessageBox::Icon boxIcon(Message::Icon icon)
{
    switch (icon) {
    case Message::Icon::Information:
        return QMessageBox::Information;
    case Message::Icon::Exclamation:
        return QMessageBox::Warning;
    case Message::Icon::Critical:
        return QMessageBox::Critical;
    case Message::Icon::None:
        break;
    }
    return QMessageBox::NoIcon;
}

} // namespace

void MessageBoxes::setParentWindow(QWidget *window)
{
    m_parent = window;
}

Messages::Answer MessageBoxes::show(const Message &message)
{
    // A dialog that is open stands between the main window and the box.
    QWidget *parent = QApplication::activeModalWidget();
    QMessageBox box(parent ? parent : m_parent.data());
    box.setIcon(boxIcon(message.icon));
    box.setWindowTitle(message.title.isEmpty() ? u"Quillwire"_s : message.title);
    box.setTextFormat(Qt::PlainText); // texts carry titles of feeds, which must not act as markup
    box.setText(message.text);
    box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);

    if (message.buttons == Message::Buttons::Ok) {
        QPushButton *ok = box.addButton(u"OK"_s, QMessageBox::AcceptRole);
        box.setDefaultButton(ok);
        box.setEscapeButton(ok);
        box.exec();
        return Answer::Ok;
    }
    QPushButton *yes = box.addButton(u"&Oui"_s, QMessageBox::YesRole);
    QPushButton *no = box.addButton(u"&Non"_s, QMessageBox::NoRole);
    box.setDefaultButton(yes);
    box.setEscapeButton(no);
    box.exec();
    return box.clickedButton() == yes ? Answer::Yes : Answer::No;
}

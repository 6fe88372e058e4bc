// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/AddressForms.h"
#include "platform/Choice.h"

#include <QLineEdit>

/// The address box `txtURL`. It is no browser's address bar: what is entered is opened as a feed.
///
/// When it gets the focus while the clipboard holds a web address (one that begins with "http://"), that becomes its
/// text and the clipboard is emptied, for all programs, so that one address copied is one feed opened.
class AddressBox : public QLineEdit
{
    Q_OBJECT

public:
    explicit AddressBox(Choice<AddressForms> addresses, QWidget *parent = nullptr);

protected:
    void focusInEvent(QFocusEvent *event) override;

private:
    Choice<AddressForms> m_addresses;
};

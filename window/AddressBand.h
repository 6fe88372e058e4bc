// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "window/AddressBox.h"

#include <QWidget>

class PictureButton;

/// The address band `fraToolbar`: the label "URL :", the box `txtURL` and the picture `Image1`, which asks for a file.
class AddressBand : public QWidget
{
    Q_OBJECT

public:
    explicit AddressBand(Choice<AddressForms> addresses, QWidget *parent = nullptr);

    AddressBox &txtURL() { return *m_txtURL; }
    const AddressBox &txtURL() const { return *m_txtURL; }

Q_SIGNALS:
    void entered();      ///< Enter in the box
    void imageClicked(); ///< a click on the picture

private:
    AddressBox *m_txtURL;
    PictureButton *m_Image1;
};

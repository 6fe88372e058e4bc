// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/AddressBand.h"

#include "controls/PictureButton.h"
#include "controls/ScreenReader.h"
#include "platform/Literals.h"

#include <QHBoxLayout>
#include <QLabel>

AddressBand::AddressBand(Choice<AddressForms> addresses, QWidget *parent)
    : QWidget(parent), m_txtURL(new AddressBox(addresses, this)),
      m_Image1(new PictureButton(u"ouvrir-fichier"_s, u"Ouvrir un fichier RSS"_s, this))
{
    setObjectName(u"fraToolbar"_s);
    ScreenReader::setRole(*this, QAccessible::Grouping);
    setAccessibleName(u"Barre d'adresse"_s);
    auto *label = new QLabel(u"URL :"_s, this);
    label->setObjectName(u"Label1"_s);
    label->setBuddy(m_txtURL);
    m_txtURL->setObjectName(u"txtURL"_s);
    m_txtURL->setAccessibleName(u"Adresse du flux"_s);
    m_txtURL->setMinimumWidth(80);
    m_Image1->setObjectName(u"Image1"_s);

    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(4, 1, 4, 1);
    row->addWidget(label);
    row->addWidget(m_txtURL, 1);
    row->addWidget(m_Image1);

    connect(m_txtURL, &QLineEdit::returnPressed, this, &AddressBand::entered);
    connect(m_Image1, &PictureButton::clicked, this, &AddressBand::imageClicked);
}

#include "window/AddressBand.h"

#include "controls/PictureButton.h"

#include <QHBoxLayout>
#include <QLabel>

AddressBand::AddressBand(QWidget *parent)
    : QWidget(parent), m_txtURL(new AddressBox(this)),
      m_Image1(new PictureButton(QStringLiteral("ouvrir-fichier"), QStringLiteral("Ouvrir un fichier RSS"), this))
{
    setObjectName(QStringLiteral("fraToolbar"));
    auto *label = new QLabel(QStringLiteral("URL :"), this);
    label->setObjectName(QStringLiteral("Label1"));
    label->setBuddy(m_txtURL);
    m_txtURL->setObjectName(QStringLiteral("txtURL"));
    m_txtURL->setAccessibleName(QStringLiteral("Adresse du flux"));
    m_txtURL->setMinimumWidth(80);
    m_Image1->setObjectName(QStringLiteral("Image1"));

    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(4, 1, 4, 1);
    row->addWidget(label);
    row->addWidget(m_txtURL, 1);
    row->addWidget(m_Image1);

    connect(m_txtURL, &QLineEdit::returnPressed, this, &AddressBand::entered);
    connect(m_Image1, &PictureButton::clicked, this, &AddressBand::imageClicked);
}

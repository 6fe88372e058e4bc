// SPDX-License-Identifier: GPL-3.0-or-later

#include "dialogs/frmExtensions.h"

#include "dialogs/DialogParts.h"
#include "platform/Literals.h"
#include "platform/Messages.h"
#include "platform/RunTimeError.h"

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

#include <algorithm>
#include <string_view>

using namespace DialogParts;

namespace {

constexpr int lineWidth = 64; // characters, at which a sentence breaks

struct Words
{
    QLatin1String key;
    const char16_t *caption;
    const char16_t *sentence;
};

/// In the order of extensionKeys.
constexpr std::array<Words, extensionKeys.size()> words{{
    {"https"_L1, u"Adresses https",
     u"Les adresses qui commencent par https:// sont acceptées partout où http:// l'est."},
    {"formats"_L1, u"Tous les formats",
     u"Atom 1.0, JSON Feed et les autres versions de RSS sont lus\u00a0; les fichiers joints et les auteurs des "
     u"podcasts "
     u"aussi."},
    {"repair"_L1, u"Flux mal formés",
     u"Les petites fautes d'un flux sont corrigées à la lecture\u00a0; la barre d'état le signale."},
    {"pages"_L1, u"Tous les caractères",
     u"Les pages et les mails montrent toutes les écritures\u00a0; les images et les liens relatifs sont complétés."},
    {"dates"_L1, u"Toutes les dates",
     u"Les dates sont lues sous toutes leurs formes\u00a0; une date illisible laisse la case vide."},
}};

constexpr bool wordsMatchKeys()
{
    const auto view = [](QLatin1String text) { return std::string_view(text.data(), std::size_t(text.size())); };
    return std::equal(words.begin(), words.end(), extensionKeys.begin(),
                      [view](const Words &word, const ExtensionKey &key) { return view(word.key) == view(key.name); });
}
static_assert(wordsMatchKeys());

QLabel *sentence(const QString &text, const QWidget &measure)
{
    auto *label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setMinimumWidth(lineWidth * measure.fontMetrics().averageCharWidth());
    return label;
}

} // namespace

frmExtensions::frmExtensions(QWidget *owner, Messages &messages, Port port)
    : DialogBase(u"Le web d'aujourd'hui"_s, owner), m_messages(messages), m_port(std::move(port)),
      m_chkTout(named(new QCheckBox(u"Tout"_s), u"chkTout"_s))
{
    auto *content = new QWidget;
    auto *column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(sentence(u"Ce qui est coché ici élargit ce que Quillwire accepte. Rien ne change sans vous, et "
                               "chaque case vaut dès que vous la cochez."_s,
                               *this));
    column->addWidget(m_chkTout);
    const int indent =
        style()->pixelMetric(QStyle::PM_IndicatorWidth) + style()->pixelMetric(QStyle::PM_CheckBoxLabelSpacing);
    for (std::size_t i = 0; i < words.size(); ++i) {
        auto *box = named(new QCheckBox(QString::fromUtf16(words[i].caption)), u"chk_"_s + words[i].key);
        auto *told = sentence(QString::fromUtf16(words[i].sentence), *this);
        box->setAccessibleDescription(told->text());
        told->setIndent(indent);
        column->addSpacing(edge / 2);
        column->addWidget(box);
        column->addWidget(told);
        m_boxes.push_back(box);
        connect(box, &QCheckBox::clicked, this, [this, i](bool on) { handleClicked(extensionKeys[i], on); });
    }
    connect(m_chkTout, &QCheckBox::clicked, this, &frmExtensions::handleAllClicked);

    auto *cmdFermer = button(u"cmdFermer"_s, u"&Fermer"_s);
    layOut(*this, content, buttonRow({cmdFermer}));
    layout()->setSizeConstraint(QLayout::SetFixedSize);
    cmdFermer->setDefault(true);
    connect(cmdFermer, &QPushButton::clicked, this, &frmExtensions::reject);
    showState();
}

void frmExtensions::handleClicked(const ExtensionKey &key, bool on)
{
    try {
        m_port.set(key, on);
    } catch (const RunTimeError &error) {
        m_messages.show({u"Le choix n'a pas pu être enregistré dans extensions.ini :\n\n"_s + error.text(),
                         u"Avertissement"_s, Message::Icon::Exclamation, Message::Buttons::Ok});
    }
    showState();
}

/// All on, unless all are on already. What can't be written is told once.
void frmExtensions::handleAllClicked()
{
    const bool on = std::any_of(extensionKeys.begin(), extensionKeys.end(),
                                [this](const ExtensionKey &key) { return !(m_port.extensions.*key.isOn); });
    for (const ExtensionKey &key : extensionKeys) {
        if (m_port.extensions.*key.isOn == on)
            continue;
        handleClicked(key, on);
        if (m_port.extensions.*key.isOn != on)
            return;
    }
}

void frmExtensions::showState()
{
    std::size_t count = 0;
    for (std::size_t i = 0; i < m_boxes.size(); ++i) {
        const bool on = m_port.extensions.*extensionKeys[i].isOn;
        m_boxes[i]->setChecked(on);
        count += on ? 1 : 0;
    }
    m_chkTout->setCheckState(count == 0 ? Qt::Unchecked : count == m_boxes.size() ? Qt::Checked : Qt::PartiallyChecked);
}

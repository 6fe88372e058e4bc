// SPDX-License-Identifier: GPL-3.0-or-later

#include "reading/web/ScriptBoxes.h"

#include "platform/Literals.h"

#include <QInputDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QUrl>

namespace {

constexpr qsizetype longestText = 2000;
constexpr qsizetype mostLines = 20;

const QString title = u"Message de la page"_s;

/// The text as it is shown: under the name of the page, which a window's title may not have the room for.
QString readable(const QUrl &page, const QString &text)
{
    const QString part = text.left(longestText);
    const QString shown = part.section(u'\n', 0, mostLines - 1);
    const QString place = page.authority();
    return (place.isEmpty() ? u"La page dit\u00a0:"_s : u"La page de "_s + place + u" dit\u00a0:") + u"\n\n" + shown +
           (shown.size() < text.size() ? u"…"_s : QString());
}

bool ask(QWidget *parent, const QUrl &page, const QString &text, bool canCancel)
{
    const QPointer<QMessageBox> box = new QMessageBox(parent);
    box->setWindowTitle(title);
    box->setTextFormat(Qt::PlainText);
    box->setText(readable(page, text));
    box->setIcon(canCancel ? QMessageBox::Question : QMessageBox::Information);
    const QPushButton *const ok = box->addButton(u"OK"_s, QMessageBox::AcceptRole);
    if (canCancel)
        box->addButton(u"Annuler"_s, QMessageBox::RejectRole);
    box->exec();
    if (!box)
        return false;
    const bool agreed = box->clickedButton() == ok;
    delete box;
    return agreed;
}

} // namespace

void ScriptBoxes::alert(QWidget *parent, const QUrl &page, const QString &text)
{
    ask(parent, page, text, false);
}

bool ScriptBoxes::confirm(QWidget *parent, const QUrl &page, const QString &text)
{
    return ask(parent, page, text, true);
}

bool ScriptBoxes::prompt(QWidget *parent, const QUrl &page, const QString &text, const QString &standard,
                         QString &result)
{
    const QPointer<QInputDialog> box = new QInputDialog(parent);
    box->setWindowTitle(title);
    box->setLabelText(readable(page, text));
    box->findChild<QLabel *>()->setTextFormat(Qt::PlainText);
    box->setTextValue(standard);
    box->setOkButtonText(u"OK"_s);
    box->setCancelButtonText(u"Annuler"_s);
    const bool agreed = box->exec() == QDialog::Accepted && box;
    if (agreed)
        result = box->textValue();
    delete box;
    return agreed;
}

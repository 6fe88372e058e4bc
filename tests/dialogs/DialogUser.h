// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/Literals.h"
#include "platform/RunTimeError.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QDialog>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QMap>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QTabWidget>
#include <QTest>
#include <QTreeWidget>

#include <functional>

/// Plays the user of a dialog, by the names of its controls, and tells what changes by that: in the controls, and in
/// what lies outside.
class DialogUser
{
public:
    using State = QMap<QString, QString>;

    /// `outside` tells what else is to be watched.
    DialogUser(QDialog &dialog, std::function<State()> outside) : m_dialog(dialog), m_outside(std::move(outside)) {}

    /// Something that happened, for the next changes().
    void note(const QString &event) { m_events += event; }

    /// What is otherwise than in `first`, which takes this state when it's none.
    QString differenceFrom(State &first)
    {
        m_state = first;
        const QString told = changes();
        if (first.isEmpty())
            first = m_state;
        return told;
    }

    /// Something that happened, for the next changes(), and what had changed by then.
    void noteWithChanges(const QString &event) { m_events += event + u" {"_s + changesOfState() + u'}'; }

    /// What happened and what changed since the last call.
    QString changes()
    {
        QStringList parts = std::exchange(m_events, {});
        if (const QString changed = changesOfState(); !changed.isEmpty())
            parts += changed;
        return parts.join(u"; "_s).replace(u'\n', u"\\n"_s).replace(u'\r', u"\\r"_s).replace(u'\u00a0', u"\\u00a0"_s);
    }

    /// Does what `step` says, "press cmdOK" or "type txtTitre Liste"; false when it isn't a verb known here.
    bool act(const QString &step)
    {
        const QString verb = step.section(u' ', 0, 0);
        const QString name = step.section(u' ', 1, 1);
        const QString rest = step.section(u' ', 2);
        QWidget *const widget = name == u"dialog" ? &m_dialog : m_dialog.findChild<QWidget *>(name);
        auto *const tree = qobject_cast<QTreeWidget *>(widget);
        QTreeWidgetItem *const row = tree ? tree->topLevelItem(rest.toInt()) : nullptr;
        const QPoint place = row ? tree->visualItemRect(row).center() : QPoint();
        if (!widget || (tree && !row && verb != u"key"))
            return false;
        if (verb == u"press")
            qobject_cast<QAbstractButton *>(widget)->click();
        else if (verb == u"type")
            type(*widget, rest);
        else if (verb == u"key") {
            if (widget != &m_dialog)
                widget->setFocus();
            QTest::keyClick(widget, QKeySequence(rest)[0].key());
        } else if (verb == u"click")
            QTest::mouseClick(tree->viewport(), Qt::LeftButton, {}, place);
        else if (verb == u"double-click")
            QTest::mouseDClick(tree->viewport(), Qt::LeftButton, {}, place);
        else if (verb == u"tick")
            row->setCheckState(0, row->checkState(0) == Qt::Checked ? Qt::Unchecked : Qt::Checked);
        else
            return false;
        return true;
    }

private:
    QString changesOfState()
    {
        QStringList parts;
        const State before = std::exchange(m_state, state());
        for (auto entry = m_state.cbegin(); entry != m_state.cend(); ++entry)
            if (before.value(entry.key(), u"?"_s) != *entry)
                parts += entry.key() + u' ' + *entry;
        return parts.join(u"; "_s);
    }

    static void type(QWidget &widget, const QString &text)
    {
        widget.setFocus();
        if (auto *const box = qobject_cast<QLineEdit *>(&widget))
            box->setText(text);
        else if (auto *const large = qobject_cast<QPlainTextEdit *>(&widget))
            large->setPlainText(text);
        else if (auto *const list = qobject_cast<QComboBox *>(&widget))
            list->setCurrentText(text);
        else if (auto *const tabs = qobject_cast<QTabWidget *>(&widget))
            tabs->setCurrentIndex(text.toInt() - 1);
    }

    static QString valueOf(const QWidget &widget)
    {
        if (const auto *const box = qobject_cast<const QLineEdit *>(&widget))
            return u'"' + box->text() + u'"';
        if (const auto *const large = qobject_cast<const QPlainTextEdit *>(&widget))
            return u'"' + large->document()->toRawText().replace(QChar::ParagraphSeparator, u'\n') + u'"' +
                   (large->lineWrapMode() == QPlainTextEdit::NoWrap ? u" unwrapped"_s : QString());
        if (const auto *const list = qobject_cast<const QComboBox *>(&widget))
            return u'"' + list->currentText() + u'"';
        if (const auto *const label = qobject_cast<const QLabel *>(&widget))
            return u'"' + label->text() + u'"';
        if (const auto *const tabs = qobject_cast<const QTabWidget *>(&widget))
            return u"%1 of %2"_s.arg(tabs->currentIndex() + 1).arg(tabs->count());
        if (const auto *const bar = qobject_cast<const QProgressBar *>(&widget))
            return u"%1 of %2"_s.arg(bar->value()).arg(bar->maximum());
        if (const auto *const button = qobject_cast<const QAbstractButton *>(&widget); button && button->isCheckable())
            return button->isChecked() ? u"on"_s : u"off"_s;
        QStringList rows;
        if (const auto *const tree = qobject_cast<const QTreeWidget *>(&widget)) {
            for (int i = 0; i < tree->topLevelItemCount(); ++i) {
                QTreeWidgetItem *const row = tree->topLevelItem(i);
                rows += (row->checkState(0) == Qt::Checked ? u"[x] "_s : u"[ ] "_s) + row->text(0) +
                        (row == tree->currentItem() ? u" <"_s : QString());
            }
        }
        return rows.join(u", "_s);
    }

    State state() const
    {
        State all = m_outside();
        const QWidgetList widgets = m_dialog.findChildren<QWidget *>();
        for (const QWidget *const widget : widgets) {
            const QString name = widget->objectName();
            if (name.isEmpty() || name.startsWith(u"qt_"_s) || name.startsWith(u"Scroll"_s))
                continue;
            QStringList parts;
            if (const QString value = valueOf(*widget); !value.isEmpty())
                parts += value;
            if (!widget->isEnabledTo(&m_dialog))
                parts += u"disabled"_s;
            if (widget->isHidden())
                parts += u"hidden"_s;
            all[name] = parts.isEmpty() ? u"there"_s : parts.join(u' ');
        }
        all[u"focus"_s] = m_dialog.focusWidget() ? m_dialog.focusWidget()->objectName() : u"nowhere"_s;
        all[u"dialog"_s] = m_dialog.isVisible()                     ? u"open"_s
                           : m_dialog.result() == QDialog::Accepted ? u"accepted"_s
                                                                    : u"closed"_s;
        return all;
    }

    QDialog &m_dialog;
    std::function<State()> m_outside;
    State m_state;
    QStringList m_events;
};

// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/HelpKey.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

#include <array>
#include <optional>
#include <utility>

namespace {

/// The numbers are the "topic-" keywords of the help.
constexpr std::array<std::pair<const char *, qint32>, 11> topics = {{{"frmImport", 13},
                                                                     {"frmExport", 14},
                                                                     {"frmRechercher", 15},
                                                                     {"frmProprietes", 16},
                                                                     {"frmOptions", 17},
                                                                     {"frmExtensions", 27},
                                                                     {"frmSendMail", 18},
                                                                     {"frmAuthentification", 19},
                                                                     {"frmAbout", 20},
                                                                     {"QMessageBox", 21},
                                                                     {"QInputDialog", 6}}};

std::optional<qint32> topicOf(const QWidget &dialog)
{
    for (const auto &[kind, topic] : topics)
        if (dialog.inherits(kind))
            return topic;
    return std::nullopt;
}

} // namespace

HelpKey::HelpKey(std::function<void(qint32)> showTopic) : m_showTopic(std::move(showTopic))
{
    qApp->installEventFilter(this);
}

bool HelpKey::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress || !watched->isWidgetType())
        return false;
    const auto &key = static_cast<const QKeyEvent &>(*event);
    const QWidget *const dialog = QApplication::activeModalWidget();
    if (key.key() != Qt::Key_F1 || key.modifiers() != Qt::NoModifier || !dialog ||
        static_cast<const QWidget *>(watched)->window() != dialog)
        return false;
    const std::optional<qint32> topic = topicOf(*dialog);
    if (topic)
        m_showTopic(*topic);
    return topic.has_value();
}

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>

#include <functional>

/// F1 in a dialog or in a message box: asks for the page of the help that tells of it.
class HelpKey final : public QObject
{
    Q_OBJECT

public:
    /// `showTopic` gets the number of a topic of the help. It works from the construction on, for the whole
    /// application.
    explicit HelpKey(std::function<void(qint32 topic)> showTopic);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    std::function<void(qint32)> m_showTopic;
};

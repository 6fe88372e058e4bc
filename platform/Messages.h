// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>

/// A message box as a value: what the system shows, without any widget.
struct Message
{
    enum class Icon { None, Information, Exclamation, Critical };
    enum class Buttons { Ok, YesNo };

    QString text;
    QString title; ///< "" stands for the program's own name
    Icon icon = Icon::None;
    Buttons buttons = Buttons::Ok;
};

/// Shows message boxes. Rooms below the widgets ask through it, and tests put their own answers behind it.
class Messages
{
public:
    enum class Answer { Ok, Yes, No };

    Messages() = default;
    Messages(const Messages &) = delete;
    Messages &operator=(const Messages &) = delete;
    virtual ~Messages() = default;

    /// Shows `message` modally and returns when it is answered: Ok for an OK box, Yes or No for a question. Closing a
    /// question without a choice is No.
    virtual Answer show(const Message &message) = 0;
};

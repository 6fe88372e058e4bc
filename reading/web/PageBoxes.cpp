// SPDX-License-Identifier: GPL-3.0-or-later

#include "reading/web/PageBoxes.h"

#include "platform/Literals.h"
#include "platform/Messages.h"

#include <QPointer>

namespace {

constexpr int mostBoxes = 5;
constexpr qint64 pressMeantForBox = 500; ///< milliseconds behind its end

} // namespace

PageBoxes::PageBoxes(Messages &messages) : m_messages(messages), m_left(mostBoxes) {}

bool PageBoxes::isJustClosed() const
{
    return m_open || (m_sinceClosed.isValid() && m_sinceClosed.elapsed() < pressMeantForBox);
}

void PageBoxes::renew()
{
    m_left = mostBoxes;
    m_refused.clear();
}

std::optional<bool> PageBoxes::show(const std::function<bool()> &box, const QString &matter)
{
    if (m_open || m_left == 0 || m_refused.contains(matter))
        return std::nullopt;
    --m_left;
    m_open = true;
    QElapsedTimer open;
    open.start();
    const QPointer<PageBoxes> alive = this;
    const bool agreed = box();
    if (!alive)
        return std::nullopt;
    m_open = false;
    m_timeOpen += open.elapsed();
    m_sinceClosed.start();
    if (!agreed && !matter.isEmpty())
        m_refused.insert(matter);
    QMetaObject::invokeMethod(this, &PageBoxes::closed, Qt::QueuedConnection);
    return agreed;
}

std::optional<bool> PageBoxes::ask(const QString &question, const QString &matter)
{
    return show(
        [this, &question] {
            return m_messages.show({question, u"Information"_s, Message::Icon::Information, Message::Buttons::YesNo}) ==
                   Messages::Answer::Yes;
        },
        matter);
}

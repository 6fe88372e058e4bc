// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/ReducedMotion.h"

#include "platform/Literals.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QStyle>
#include <QWidget>

namespace {

constexpr int patienceMs = 100;

/// The portal wraps an answer in a variant, and the desktop's own in another.
QVariant unwrapped(QVariant answer)
{
    while (answer.canConvert<QDBusVariant>())
        answer = answer.value<QDBusVariant>().variant();
    return answer;
}

bool portalTurnsAnimationsOff()
{
    QDBusMessage question =
        QDBusMessage::createMethodCall(u"org.freedesktop.portal.Desktop"_s, u"/org/freedesktop/portal/desktop"_s,
                                       u"org.freedesktop.portal.Settings"_s, u"Read"_s);
    question << u"org.gnome.desktop.interface"_s << u"enable-animations"_s;
    question.setAutoStartService(false);
    const QDBusMessage answer = QDBusConnection::sessionBus().call(question, QDBus::Block, patienceMs);
    if (answer.type() != QDBusMessage::ReplyMessage || answer.arguments().isEmpty())
        return false;
    const QVariant enabled = unwrapped(answer.arguments().constFirst());
    return enabled.typeId() == QMetaType::Bool && !enabled.toBool();
}

} // namespace

bool desktopReducesMotion(const QWidget &widget)
{
    return widget.style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, &widget) == 0 ||
           portalTurnsAnimationsOff();
}

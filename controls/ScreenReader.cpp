// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/ScreenReader.h"

#include "platform/Literals.h"

#include <QAccessibleWidget>
#include <QTimer>
#include <QVariant>

#include <utility>

namespace {

constexpr const char *partProperty = "screenReaderPart";
constexpr int announcementMs = 3000;

struct Part
{
    QAccessible::Role role = QAccessible::NoRole;
    ScreenReader::Value value;
};

class AccessiblePart final : public QAccessibleWidget, public QAccessibleValueInterface
{
public:
    AccessiblePart(QWidget *widget, Part part) : QAccessibleWidget(widget, part.role), m_value(std::move(part.value)) {}

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::ValueInterface && m_value.current)
            return static_cast<QAccessibleValueInterface *>(this);
        return QAccessibleWidget::interface_cast(type);
    }
    QString text(QAccessible::Text kind) const override
    {
        if (kind == QAccessible::Name && m_value.namesake)
            return QAccessible::queryAccessibleInterface(m_value.namesake)->text(kind);
        return QAccessibleWidget::text(kind);
    }
    QVariant currentValue() const override { return m_value.current(); }
    void setCurrentValue(const QVariant &value) override { m_value.set(value.toInt()); }
    QVariant minimumValue() const override { return m_value.lowest(); }
    QVariant maximumValue() const override { return m_value.highest(); }
    QVariant minimumStepSize() const override { return m_value.step; }

private:
    ScreenReader::Value m_value;
};

QAccessibleInterface *makeAccessible(const QString &, QObject *object)
{
    const QVariant part = object->property(partProperty);
    return part.isValid() ? new AccessiblePart(static_cast<QWidget *>(object), part.value<Part>()) : nullptr;
}

} // namespace

void ScreenReader::setRole(QWidget &widget, QAccessible::Role role)
{
    setRole(widget, role, {});
}

void ScreenReader::setRole(QWidget &widget, QAccessible::Role role, Value value)
{
    [[maybe_unused]] static const bool isKnown = [] {
        QAccessible::installFactory(makeAccessible);
        return true;
    }();
    widget.setProperty(partProperty, QVariant::fromValue(Part{role, std::move(value)}));
}

void ScreenReader::tellValue(QWidget &widget, int value)
{
    QAccessibleValueChangeEvent changed(&widget, value);
    QAccessible::updateAccessibility(&changed);
}

void ScreenReader::announce(QWidget &part, const QString &text)
{
    // Readers speak a notification when it comes up. This one has nothing to be seen, and goes again, since it would be
    // spoken anew whenever the window comes back.
    auto *const announcement = new QWidget(&part);
    setRole(*announcement, QAccessible::Notification);
    announcement->setObjectName(u"announcement"_s);
    announcement->setAccessibleName(text);
    announcement->resize(0, 0);
    announcement->show();
    QTimer::singleShot(announcementMs, announcement, &QObject::deleteLater);
}

// SPDX-License-Identifier: GPL-3.0-or-later

#include "reading/web/UserActs.h"

#include "reading/web/PageBoxes.h"

#include <QChildEvent>
#include <QKeyEvent>
#include <QWebEngineView>

namespace {

constexpr qint64 pressLasts = 5000; ///< milliseconds; as long as browsers let a page act upon one

bool isPress(const QEvent &event)
{
    switch (event.type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::TouchBegin:
        return true;
    case QEvent::KeyPress: {
        const auto &key = static_cast<const QKeyEvent &>(event);
        return !key.isAutoRepeat() && key.key() != Qt::Key_Escape;
    }
    default:
        return false;
    }
}

} // namespace

UserActs::UserActs(const PageBoxes &boxes, QObject *parent) : QObject(parent), m_boxes(boxes) {}

void UserActs::watch(QWebEngineView &view)
{
    // The engine draws in a child of the view, and makes another one for each process that a page lives in.
    view.installEventFilter(this);
    const QObjectList children = view.children();
    for (QObject *child : children)
        child->installEventFilter(this);
}

void UserActs::command()
{
    Q_EMIT acted();
}

void UserActs::press()
{
    m_sincePress.start();
    m_boxesBefore = m_boxes.timeOpen();
    if (!m_boxes.isJustClosed())
        Q_EMIT acted();
}

bool UserActs::isFresh() const
{
    return m_sincePress.isValid() && m_sincePress.elapsed() - (m_boxes.timeOpen() - m_boxesBefore) < pressLasts;
}

bool UserActs::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::ChildAdded)
        static_cast<QChildEvent *>(event)->child()->installEventFilter(this);
    else if (isPress(*event))
        press();
    return QObject::eventFilter(watched, event);
}

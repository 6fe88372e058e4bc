// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/cToolbarHost.h"

#include "controls/OfficeXpStyle.h"
#include "controls/ScreenReader.h"
#include "controls/cToolbar.h"
#include "platform/Literals.h"

#include <QEvent>
#include <QMenu>
#include <QToolButton>

#include <algorithm>

namespace {
constexpr int chevronWidth = 16;
}

cToolbarHost::cToolbarHost(QWidget *parent) : QWidget(parent), m_chevron(new QToolButton(this))
{
    ScreenReader::setRole(*this, QAccessible::Pane);
    m_chevron->setText(u"»"_s);
    m_chevron->setAutoRaise(true);
    m_chevron->setFocusPolicy(Qt::TabFocus);
    m_chevron->setToolTip(u"Autres boutons"_s);
    m_chevron->setAccessibleName(u"Autres boutons"_s);
    m_chevron->hide();
    connect(m_chevron, &QToolButton::clicked, this, [this] {
        if (m_toolbar)
            m_toolbar->ShowOverflow(m_chevron->mapToGlobal(QPoint(0, m_chevron->height())));
    });
}

void cToolbarHost::Capture(cToolbar *toolbar)
{
    if (m_toolbar && m_toolbar != toolbar) {
        m_toolbar->removeEventFilter(this);
        m_toolbar->disconnect(this);
        m_toolbar->hide();
        m_toolbar->setParent(nullptr);
    }
    const bool isNew = m_toolbar != toolbar;
    m_toolbar = toolbar;
    if (toolbar && isNew) {
        toolbar->setParent(this);
        toolbar->installEventFilter(this);
        toolbar->show();
        dressChevron();
        connect(toolbar, &cToolbar::overflowChanged, this, &cToolbarHost::layOut);
    }
    layOut();
}

void cToolbarHost::setHostHeight(int height)
{
    setFixedHeight(std::max(0, height));
}

QSize cToolbarHost::sizeHint() const
{
    return m_toolbar ? m_toolbar->sizeHint() : QSize(0, 24);
}

bool cToolbarHost::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_toolbar && event->type() == QEvent::StyleChange)
        dressChevron();
    return QWidget::eventFilter(watched, event);
}

void cToolbarHost::resizeEvent(QResizeEvent *)
{
    layOut();
}

void cToolbarHost::dressChevron()
{
    m_chevron->setStyle(m_toolbar->drawStyle() == DrawStyle::OfficeXp ? OfficeXpStyle::shared() : nullptr);
}

void cToolbarHost::layOut()
{
    QRect inner = rect();
    const bool overflow = m_toolbar && m_toolbar->idealWidth() > inner.width();
    m_chevron->setVisible(overflow);
    if (overflow) {
        m_chevron->setGeometry(inner.right() - chevronWidth + 1, inner.top(), chevronWidth, inner.height());
        inner.setRight(inner.right() - chevronWidth);
    }
    if (m_toolbar)
        m_toolbar->setGeometry(inner);
}

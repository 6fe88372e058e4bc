// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/BusySign.h"

#include "controls/StatusBar.h"
#include "platform/Literals.h"
#include "window/FeedTreeView.h"
#include "window/MainFrame.h"

#include <QGuiApplication>

BusySign::BusySign(MainFrame &frame) : m_frame(frame)
{
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    m_frame.setCountText(u"Ouverture..."_s);
    m_frame.stabPrinc->repaint();
    m_frame.tvwFavoris->viewport()->repaint(); // the node that was clicked looks selected
}

BusySign::~BusySign()
{
    m_frame.setCountText({});
    QGuiApplication::restoreOverrideCursor();
}

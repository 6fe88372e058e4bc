// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/CutTips.h"

#include "platform/Literals.h"

#include <QHeaderView>
#include <QHelpEvent>
#include <QToolTip>

namespace {

constexpr qsizetype longestTip = 1000;

QString textOf(const QVariant &tip, const QVariant &shown)
{
    return tip.isValid() ? tip.toString() : shown.toString();
}

} // namespace

CutTips::CutTips(QAbstractItemView &view, QHeaderView *header) : QObject(&view), m_view(view), m_header(header)
{
    view.viewport()->installEventFilter(this);
    if (header)
        header->viewport()->installEventFilter(this);
}

QString CutTips::tip(const QString &text)
{
    return text.isEmpty() ? QString() : u"<p>"_s + text.left(longestTip).toHtmlEscaped() + u"</p>"_s;
}

QString CutTips::tipOfCell(const QPoint &position) const
{
    const QModelIndex index = m_view.indexAt(position);
    if (!index.isValid())
        return {};
    const QRect seen = m_view.visualRect(index).intersected(m_view.viewport()->rect());
    if (m_view.sizeHintForIndex(index).width() <= seen.width())
        return {};
    return tip(textOf(index.data(Qt::ToolTipRole), index.data()));
}

QString CutTips::tipOfCaption(const QPoint &position) const
{
    const int section = m_header->logicalIndexAt(position);
    if (section < 0 || m_header->sectionSizeHint(section) <= m_header->sectionSize(section))
        return {};
    const QAbstractItemModel *model = m_view.model();
    return tip(textOf(model->headerData(section, Qt::Horizontal, Qt::ToolTipRole),
                      model->headerData(section, Qt::Horizontal)));
}

bool CutTips::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::ToolTip)
        return QObject::eventFilter(watched, event);
    const auto *help = static_cast<QHelpEvent *>(event);
    const bool overHeader = m_header && watched == m_header->viewport();
    const QString text = overHeader ? tipOfCaption(help->pos()) : tipOfCell(help->pos());
    QToolTip::showText(help->globalPos(), text, static_cast<QWidget *>(watched)); // none hides the one before
    return true;
}

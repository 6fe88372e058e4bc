// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QObject>
#include <QString>

class QAbstractItemView;
class QHeaderView;

/// Shows, as a tip, the whole of a text that an item view or its header has no room for. What the model gives as a tip
/// stands for the text of a cell that is no text on the screen.
class CutTips final : public QObject
{
    Q_OBJECT

public:
    /// Watches `view`, which owns this object, and `header` where there is one.
    explicit CutTips(QAbstractItemView &view, QHeaderView *header = nullptr);

    /// `text`, shortened where it is endless, as a tip that takes no part of it for markup.
    static QString tip(const QString &text);

    /// The tip for that place in the view, respectively the header; "" where there is nothing or nothing is cut.
    QString tipOfCell(const QPoint &position) const;
    QString tipOfCaption(const QPoint &position) const;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QAbstractItemView &m_view;
    QHeaderView *m_header;
};

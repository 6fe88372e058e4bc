// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QSet>
#include <QString>

#include <functional>
#include <optional>

class Messages;

/// All that is modal and that a page can cause: questions of the pane, the page's own boxes, file dialogs. The pages of
/// a pane share one budget, which only an act of the user renews, so that no page holds the program behind boxes.
///
/// One box is open at a time. It runs inside an event of the engine, which is then in the middle of something: no
/// navigation may be begun until closed() comes. The object may end while a box is open.
class PageBoxes final : public QObject
{
    Q_OBJECT

public:
    /// `messages` outlives the object.
    explicit PageBoxes(Messages &messages);

    bool isOpen() const { return m_open; }

    /// True so closely behind a box that what is pressed now was meant for the box.
    bool isJustClosed() const;

    /// Milliseconds that boxes have been open, all told.
    qint64 timeOpen() const { return m_timeOpen; }

    /// The user did something: pages may cause boxes again, also about what was refused.
    void renew();

    /// Shows a box by calling `box`, which returns whether it was agreed to. Nothing where no box may be shown: another
    /// is open, the budget is spent, or `matter` (any text but "") was refused since the last act of the user.
    std::optional<bool> show(const std::function<bool()> &box, const QString &matter = {});

    /// Likewise for a question with Yes and No.
    std::optional<bool> ask(const QString &question, const QString &matter = {});

Q_SIGNALS:
    /// A box was closed, and the engine has finished with what it was in the middle of.
    void closed();

private:
    Messages &m_messages;
    bool m_open = false;
    int m_left;
    QSet<QString> m_refused;
    QElapsedTimer m_sinceClosed;
    qint64 m_timeOpen = 0;
};

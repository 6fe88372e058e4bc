// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QElapsedTimer>
#include <QObject>

class PageBoxes;
class QWebEngineView;

/// What the user does with a page, told from the input of the view: a script can follow a link or send a form as if it
/// were clicked, but it can't press anything.
class UserActs final : public QObject
{
    Q_OBJECT

public:
    /// `boxes` outlives the object.
    explicit UserActs(const PageBoxes &boxes, QObject *parent = nullptr);

    /// Watches what is pressed in `view`.
    void watch(QWebEngineView &view);

    /// The user asked the program for something: a page, a step back.
    void command();

    /// The user pressed something in the page.
    void press();

    /// True where what the page does may still come from a press: for some seconds, boxes not counted.
    bool isFresh() const;

    /// Another page is on show. What that one does comes from no press.
    void pass() { m_sincePress.invalidate(); }

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    /// Not for a press so close behind a box that it was meant for the box.
    void acted();

private:
    const PageBoxes &m_boxes;
    QElapsedTimer m_sincePress;
    qint64 m_boxesBefore = 0; ///< what PageBoxes::timeOpen() said at the press
};

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QUrl>

class QWebEngineSettings;

/// What a page has on show and where it is under way to; and the switch of the scripts, which follows what is on show.
///
/// The engine takes the switch when it makes a page's process, before the page comes on show. So the switch is thrown
/// ahead in two cases: off on the way to a page without scripts, and on while one of our own pages leads to the web,
/// which its policy keeps from scripts until then. Where the way ends nowhere (a download, an answer without a page, a
/// stop) it goes back. A local file has no such policy: it never waits with scripts on.
class PageCourse final
{
public:
    /// `settings` outlives the object.
    explicit PageCourse(QWebEngineSettings &settings);

    const QUrl &onShow() const { return m_onShow; }

    /// Empty when the page is under way to nowhere.
    const QUrl &target() const { return m_target; }

    bool scriptsAreOn() const;

    /// The program sends the page on show away, which has no say in it any more; until another is on show, or the way
    /// ends nowhere.
    void leave() { m_isLeft = true; }
    bool isLeft() const { return m_isLeft; }

    /// The engine sets out for `target`, or is led on to it.
    void begin(const QUrl &target);

    /// True for the address that the page is under way to; a script of the page on show can change that one's address
    /// without leaving it.
    bool isAwaited(const QUrl &url) const;

    /// The address of what is on show is now `url`. Returns whether a page of the web came without its scripts and has
    /// to be loaded once more.
    bool arrive(const QUrl &url);

    /// The loading of `url` has ended, whatever came of it. The page on show may come to its end while another is
    /// awaited.
    void end(const QUrl &url);

    /// The way has ended nowhere.
    void giveUp();

private:
    void setScripts(bool on);

    QWebEngineSettings &m_settings;
    QUrl m_onShow;
    QUrl m_target;
    bool m_isLeft = false;
};

// SPDX-License-Identifier: GPL-3.0-or-later

#include "reading/web/PageCourse.h"

#include "reading/web/Addresses.h"

#include <QWebEngineSettings>

using Addresses::runsScripts;

PageCourse::PageCourse(QWebEngineSettings &settings) : m_settings(settings) {}

bool PageCourse::scriptsAreOn() const
{
    return m_settings.testAttribute(QWebEngineSettings::JavascriptEnabled);
}

void PageCourse::begin(const QUrl &target)
{
    m_target = target;
    if (!runsScripts(target))
        setScripts(false);
    else if (!m_onShow.isLocalFile())
        setScripts(true);
}

bool PageCourse::isAwaited(const QUrl &url) const
{
    // Where a server leads on, the engine adds the fragment of the address that it came from.
    return !m_target.isEmpty() && url.matches(m_target, QUrl::RemoveFragment);
}

bool PageCourse::arrive(const QUrl &url)
{
    const bool isStillThere = !isAwaited(url) && runsScripts(m_onShow) && runsScripts(url);
    m_onShow = url;
    if (isStillThere)
        return false;
    const bool missedItsScripts = runsScripts(url) && !scriptsAreOn();
    giveUp();
    return missedItsScripts;
}

void PageCourse::end(const QUrl &url)
{
    if (isAwaited(url) || (!m_target.isEmpty() && !runsScripts(m_onShow)))
        giveUp();
}

void PageCourse::giveUp()
{
    m_target.clear();
    m_isLeft = false;
    setScripts(runsScripts(m_onShow));
}

void PageCourse::setScripts(bool on)
{
    m_settings.setAttribute(QWebEngineSettings::JavascriptEnabled, on);
}

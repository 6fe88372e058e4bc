// SPDX-License-Identifier: GPL-3.0-or-later

#include "dialogs/CHelp.h"

#include "platform/Literals.h"

namespace {

QString helpPath(const QString &newFile, const QString &windowPane)
{
    // A window type of blanks isn't empty: the path then ends in ">".
    if (windowPane.isEmpty())
        return newFile;
    return newFile.trimmed() + QLatin1Char('>') + windowPane.trimmed();
}

} // namespace

CHelp::CHelp(HelpSystem &system) : m_system(system) {}

void CHelp::Show(const QString &NewFile, const QString &WindowPane, std::optional<qint32> ContextID)
{
    const QString path = helpPath(NewFile, WindowPane);
    if (ContextID)
        m_system.htmlHelp(path, HelpCommand::Topic, *ContextID);
    else
        m_system.htmlHelp(path, HelpCommand::Contents, std::monostate{});
}

void CHelp::ShowIndex(const QString &NewFile, const QString &WindowPane)
{
    m_system.htmlHelp(helpPath(NewFile, WindowPane), HelpCommand::Index, qint32{0});
}

void CHelp::ShowSearch(const QString &NewFile, const QString &WindowPane)
{
    HelpQuery query;
    query.text = u"TEST"_s;
    m_system.htmlHelp(helpPath(NewFile, WindowPane), HelpCommand::Search, query);
}

// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/DesktopEntry.h"

#include "platform/Literals.h"

namespace {

/// One argument within double quotes: these, the backtick, "$" and the backslash get a backslash before them, and a
/// percent sign, which begins a field code, is doubled.
QString quotedArgument(const QString &argument)
{
    QString quoted;
    for (const QChar character : argument) {
        if (QStringView(u"\"`$\\").contains(character))
            quoted += u'\\';
        if (character == u'%')
            quoted += u'%';
        quoted += character;
    }
    return u'"' + quoted + u'"';
}

} // namespace

QString DesktopEntry::execLine(const QString &program, const QStringList &arguments)
{
    // Launchers look for the program before they undo a doubled percent sign, and the format bars "=" from its name:
    // such a program is started through the shell.
    const bool needsShell = program.contains(u'%') || program.contains(u'=');
    QString line = (needsShell ? uR"(sh -c "exec \"\$0\" \"\$@\"" )"_s : QString()) + quotedArgument(program);
    for (const QString &argument : arguments)
        line += u' ' + quotedArgument(argument);
    // The escapes of the type string come on top of the quotes, so that a backslash ends up as four.
    return stringValue(line);
}

QString DesktopEntry::stringValue(const QString &text)
{
    QString value;
    for (const QChar character : text) {
        switch (character.unicode()) {
        case u'\\':
            value += u"\\\\";
            break;
        case u'\n':
            value += u"\\n";
            break;
        case u'\r':
            value += u"\\r";
            break;
        case u'\t':
            value += u"\\t";
            break;
        case u' ':
            // A leading blank would be taken for layout.
            value += value.isEmpty() ? u"\\s"_s : u" "_s;
            break;
        default:
            value += character;
        }
    }
    return value;
}

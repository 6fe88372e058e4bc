// SPDX-License-Identifier: GPL-3.0-or-later

#include "dialogs/HelpBrowser.h"

#include "platform/Literals.h"

#include <QHelpEngine>

HelpBrowser::HelpBrowser(QWidget *parent) : QTextBrowser(parent)
{
    setOpenLinks(false);
    setUndoRedoEnabled(false);
}

QVariant HelpBrowser::loadResource(int type, const QUrl &name)
{
    const QUrl url = name.isRelative() ? source().resolved(name) : name;
    if (!m_engine || url.scheme() != u"qthelp"_s)
        return {};
    const QByteArray bytes = m_engine->fileData(url);
    if (type == QTextDocument::HtmlResource || type == QTextDocument::StyleSheetResource)
        return QString::fromUtf8(bytes);
    return bytes;
}

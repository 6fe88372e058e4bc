// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QTextBrowser>

class QHelpEngine;

/// Shows the pages of an opened help file. It loads nothing that isn't in that file.
class HelpBrowser final : public QTextBrowser
{
    Q_OBJECT

public:
    explicit HelpBrowser(QWidget *parent = nullptr);

    /// The engine that pages come from from now on; null for none. Not owned.
    void setEngine(const QHelpEngine *engine) { m_engine = engine; }

    QVariant loadResource(int type, const QUrl &name) override;

private:
    const QHelpEngine *m_engine = nullptr;
};

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QColor>
#include <QObject>

class QWidget;

/// The colours of our own pages: those of a widget's palette, and what fits them for links, lines and the like.
class PageColours final : public QObject
{
    Q_OBJECT

public:
    /// `widget` outlives the object.
    explicit PageColours(QWidget &widget);

    /// What is behind all that a page paints.
    QColor paper() const;

    /// The rule of a style sheet that sets them as the properties --scheme (light or dark), --page, --text, --quiet,
    /// --rule, --soft, --link, --seen and --accent of the document.
    QString rule() const;

Q_SIGNALS:
    /// The palette of the widget is another.
    void changed();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    QWidget &m_widget;
};

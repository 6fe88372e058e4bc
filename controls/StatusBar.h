// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>
#include <QWidget>

#include <vector>

class QLabel;
class QSizeGrip;

/// Panels in a row along the bottom of a window, addressed by key, with a grip for resizing the
/// window.
class StatusBar : public QWidget
{
    Q_OBJECT

public:
    explicit StatusBar(QWidget *parent = nullptr);

    /// How a panel takes part in sharing out the width.
    enum class Panel { Fixed, Glue };

    /// Adds a panel behind the others. `width` is in pixels; a Glue panel takes what the others leave over, be it less
    /// or more. Where even the fixed ones don't fit, the widest of them gives way. A key that is taken throws
    /// RunTimeError::keyInUse().
    void addPanel(const QString &key, int width, Panel kind = Panel::Fixed);

    /// The text of a panel: plain, on one line, cut with an ellipsis where it doesn't fit (the whole text is in its tip
    /// then). A key that there isn't throws RunTimeError::elementNotFound().
    void setPanelText(const QString &key, const QString &text);

    /// Where a panel stands in the status bar, in pixels; for a control that lies over it (make that a child of the
    /// status bar).
    QRect panelRect(const QString &key) const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The panels have new places.
    void panelsMoved();

protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    struct Entry
    {
        QString key;
        int width;
        Panel kind;
        QLabel *label;
    };
    const Entry &entry(const QString &key) const;
    void layOut();

    std::vector<Entry> m_panels;
    QSizeGrip *m_grip;
};

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QPointer>
#include <QWidget>

class QToolButton;
class cToolbar;

/// Holds one toolbar in a window without a rebar. When the toolbar doesn't fit, a chevron at the right end opens the
/// menu of what is left over.
class cToolbarHost : public QWidget
{
    Q_OBJECT

public:
    explicit cToolbarHost(QWidget *parent = nullptr);

    /// Takes `toolbar` in as a child, filling the host, and shows it. One that was held before is let go, hidden,
    /// without a parent. Null lets go only.
    void Capture(cToolbar *toolbar);

    cToolbar *toolbar() const { return m_toolbar; }

    /// Height of the host in pixels; it is kept whatever the toolbar asks for.
    void setHostHeight(int height);

    QSize sizeHint() const override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void dressChevron();
    void layOut();

    QPointer<cToolbar> m_toolbar;
    QToolButton *m_chevron;
};

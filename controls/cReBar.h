// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QString>
#include <QWidget>

#include <memory>

/// Bands that hold a control each, in rows across the top of a window: each can be dragged by its gripper to another
/// place or row and resized, and shows a chevron where its control doesn't fit.
class cReBar : public QWidget
{
    Q_OBJECT

public:
    explicit cReBar(QWidget *parent = nullptr);
    ~cReBar() override;

    /// Adds a band behind the others. `data` names it. `fixedSize` forbids dragging and resizing. The child becomes the
    /// rebar's.
    void AddBand(QWidget *child, const QString &caption, bool newRow, bool fixedSize, const QString &data);

    int BandCount() const;

    /// The data of the band with that identifier (1 for the first added); "" when there is none.
    QString BandData(int id) const;

    /// Minimum width (-1: leave as it is) and height of a band in pixels; `number` counts from 0 in order of adding. A
    /// number that there isn't does nothing.
    void setBandMinimumSize(int number, int width, int height);

    /// Gives a band the width that shows all of its control, as far as its row has room. A number that there isn't does
    /// nothing.
    void showAllOfBand(int number);

    /// Height of all rows, in pixels.
    int rebarHeight() const;

    /// Where the rebar is docked: 0 is along the top, the only place here.
    int position() const { return 0; }

    /// Lays the bands out anew and takes the height that they need.
    void RebarSize();

    /// Takes all bands out; the children are hidden and stay with their owner.
    void RemoveAllBands();

    /// The layout as the XML text of an element `Bands`, attributes `count` and `rowCount`, a child `Band` for each
    /// band in their present order with `id`, `data`, `left`, `top`, `right`, `bottom` (pixels), `bandChildMinWidth`,
    /// `bandChildIdealWidth`, `chevron` ("y" when it shows one), `text`, `fixedBand` ("y" or "n"). On one line, with no
    /// blanks between elements.
    QString saveLayout() const;

    /// Puts the bands where `layout` (such a text) says, by their data; a text that is empty, damaged or names other
    /// bands changes nothing: the bands stay as added. Returns whether the text was taken. Numbers out of range are
    /// brought into it.
    bool restoreLayout(const QString &layout);

    QSize sizeHint() const override;

Q_SIGNALS:
    void HeightChanged(int newHeight);

    /// A chevron was pressed; the rectangle is the chevron's, in twips, relative to the rebar itself.
    void ChevronPushed(int id, double left, double top, double right, double bottom);

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    struct Private;
    std::unique_ptr<Private> d;
};

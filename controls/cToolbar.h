// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QToolButton>
#include <QWidget>

#include <memory>

class ImageList;
class QMenu;
class cPopupMenu;

/// How toolbars and menus are drawn.
enum class DrawStyle { Standard = 0, OfficeXp = 2 };

/// A row of buttons addressed by index (separators count) and by key; what doesn't fit is reached through the overflow
/// menu that ShowOverflow() opens. Buttons can be reached with Tab and the arrow keys.
class cToolbar : public QWidget
{
    Q_OBJECT

public:
    /// The styles of a button.
    enum ButtonStyle { AutoSize = 16, Separator = 17, DropDownArrow = 24 };

    explicit cToolbar(QWidget *parent = nullptr);
    ~cToolbar() override;

    void setImageList(const ImageList *images);
    void setDrawStyle(DrawStyle style);
    DrawStyle drawStyle() const;

    /// Captions under the pictures are shown, or the pictures alone.
    void setCaptionsVisible(bool visible);

    /// Adds a button behind the others. `image` is an index of the image list, -1 for none; `tip` is also the
    /// accessible name.
    void AddButton(const QString &tip, int image, const QString &caption, ButtonStyle style, const QString &key);

    int buttonCount() const;
    void setButtonEnabled(int index, bool enabled);
    void setButtonEnabled(const QString &key, bool enabled);
    bool isButtonEnabled(int index) const;
    bool isButtonEnabled(const QString &key) const;

    /// The button at `index`, for tests and for placing; null for a separator and in a menu bar.
    QToolButton *button(int index) const;

    /// Builds the buttons from the top-level entries of `menu`: a menu bar. F10, Alt alone and mnemonics open it, arrow
    /// keys move along it, and the shortcuts of its entries work.
    void CreateFromMenu(cPopupMenu *menu);

    /// The point of the screen where the drop-down menu of a button belongs.
    QPoint dropDownPosition(int index) const;

    /// Opens the menu of the buttons that don't fit, at a point of the screen, and returns at once. Null, and no menu,
    /// when all fit. A choice acts as the button; of a button with an arrow it acts as the arrow.
    QMenu *ShowOverflow(const QPoint &globalPosition);

    /// Width that shows all buttons, in pixels.
    int idealWidth() const;

    /// The version of the control library that a change of style asks for: 6 and 0 here. Tests set another.
    struct ControlsVersion
    {
        int major = 6;
        int minor = 0;
    };
    ControlsVersion commonControlsVersion() const;
    void setCommonControlsVersion(ControlsVersion version);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void ButtonClick(int index);
    void DropDownPress(int index);
    void overflowChanged(); ///< whether all fit, or idealWidth(), may have changed

protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct Private;
    std::unique_ptr<Private> d;
};

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QHash>
#include <QIcon>
#include <QString>

/// A list of pictures addressed by index, drawn from the program's vector icons at one size and at any pixel density.
class ImageList
{
public:
    /// `size` is the side of a picture in logical pixels.
    explicit ImageList(int size);

    /// Puts the icon of that name (":/icons/<name>.svg") at `index`. Its file is read when it is first asked for.
    void setPicture(int index, const QString &name);

    /// The picture at `index`; a null icon where there is none.
    QIcon icon(int index) const;

    int size() const { return m_size; }

private:
    int m_size;
    QHash<int, QString> m_names;
    mutable QHash<int, QIcon> m_icons; // those asked for so far
};

/// The four lists of the main window: pictures of the tree and the item list (1), big toolbar pictures of 24 pixels
/// (2), those of the pop-up menus (3), small toolbar pictures of 16 pixels (4).
namespace ImageLists {
const ImageList &vbalImageList1();
const ImageList &vbalImageList2();
const ImageList &vbalImageList3();
const ImageList &vbalImageList4();
} // namespace ImageLists

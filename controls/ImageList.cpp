// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/ImageList.h"

#include "platform/Literals.h"

#include <initializer_list>

ImageList::ImageList(int size) : m_size(size) {}

void ImageList::setPicture(int index, const QString &name)
{
    m_names.insert(index, name);
    m_icons.remove(index);
}

QIcon ImageList::icon(int index) const
{
    const auto name = m_names.constFind(index);
    if (name == m_names.constEnd())
        return {};
    const auto known = m_icons.constFind(index);
    if (known != m_icons.constEnd())
        return *known;
    const QString file = u":/icons/" + *name + u".svg";
    QIcon icon(file);
    icon.addFile(file, QSize(), QIcon::Selected); // as it is: tinted by the selection a blue picture would be gone
    return *m_icons.insert(index, icon);
}

namespace {

// The lists live until the process ends and are never destroyed: pictures must not be let go after the application
// object.
const ImageList *newList(int size, int firstIndex, std::initializer_list<QString> names)
{
    auto *list = new ImageList(size);
    for (const QString &name : names)
        list->setPicture(firstIndex++, name);
    return list;
}

const ImageList *newToolbarList(int size)
{
    return newList(size, 0,
                   {u"actualiser"_s, u"supprimer"_s, u"proprietes"_s, u"ajouter"_s, u"precedent"_s, u"suivant"_s,
                    u"arreter"_s, u"ouvrir"_s, u"commentaires"_s, u"piece-jointe"_s, u"envoyer-mail"_s});
}

} // namespace

const ImageList &ImageLists::vbalImageList1()
{
    static const ImageList *const list = newList(16, 2,
                                                 {u"folder"_s, u"feed"_s, u"feed-updating"_s, u"root"_s, u"unread"_s,
                                                  u"read"_s, u"sort-descending"_s, u"sort-ascending"_s});
    return *list;
}

const ImageList &ImageLists::vbalImageList2()
{
    static const ImageList *const list = newToolbarList(24);
    return *list;
}

const ImageList &ImageLists::vbalImageList3()
{
    static const ImageList *const list =
        newList(16, 0, {u"actualiser"_s, u"supprimer"_s, u"proprietes"_s, u"nouveau-dossier"_s});
    return *list;
}

const ImageList &ImageLists::vbalImageList4()
{
    static const ImageList *const list = newToolbarList(16);
    return *list;
}

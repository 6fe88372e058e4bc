#include "controls/ImageList.h"

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
                   {QStringLiteral("actualiser"), QStringLiteral("supprimer"), QStringLiteral("proprietes"),
                    QStringLiteral("ajouter"), QStringLiteral("precedent"), QStringLiteral("suivant"),
                    QStringLiteral("arreter"), QStringLiteral("ouvrir"), QStringLiteral("commentaires"),
                    QStringLiteral("piece-jointe"), QStringLiteral("envoyer-mail")});
}

} // namespace

const ImageList &ImageLists::vbalImageList1()
{
    static const ImageList *const list =
        newList(16, 2,
                {QStringLiteral("folder"), QStringLiteral("feed"), QStringLiteral("feed-updating"),
                 QStringLiteral("root"), QStringLiteral("unread"), QStringLiteral("read"),
                 QStringLiteral("sort-descending"), QStringLiteral("sort-ascending")});
    return *list;
}

const ImageList &ImageLists::vbalImageList2()
{
    static const ImageList *const list = newToolbarList(24);
    return *list;
}

const ImageList &ImageLists::vbalImageList3()
{
    static const ImageList *const list = newList(16, 0,
                                                 {QStringLiteral("actualiser"), QStringLiteral("supprimer"),
                                                  QStringLiteral("proprietes"), QStringLiteral("nouveau-dossier")});
    return *list;
}

const ImageList &ImageLists::vbalImageList4()
{
    static const ImageList *const list = newToolbarList(16);
    return *list;
}

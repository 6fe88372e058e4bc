// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/Literals.h"

#include <QString>

/// The maker's web site, which menus and the about box lead to. Whoever deploys the program puts its address here.
namespace MakerSite {

/// The site's root, with a slash at its end.
inline QString root()
{
    return u"http://tovik.example/"_s;
}

/// The address of a page; `path` has no leading slash: "prog/Quillwire/".
inline QString page(const QString &path)
{
    return root() + path;
}

} // namespace MakerSite

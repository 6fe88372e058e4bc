// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/feed/Vocabulary.h"

#include <QString>

/// An element that a text is read from.
struct FoundElement
{
    const xmlNode *element;       ///< the first of its name
    const Vocabulary &vocabulary; ///< tells which others are alike
    const char *detail;           ///< as the format's table has it
};

/// A way in which a text lies in an element. "" when there is none.
using Reading = QString (*)(const FoundElement &found);

/// The ways that more than one format knows.
namespace Readings {

/// The text of the element.
QString text(const FoundElement &found);

/// The texts of all elements of that name, joined with ", ".
QString joinedTexts(const FoundElement &found);

/// The value of the attribute that `detail` names.
QString attribute(const FoundElement &found);

/// The text of the first own child of the name that `detail` says.
QString childText(const FoundElement &found);

} // namespace Readings

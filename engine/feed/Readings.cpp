// SPDX-License-Identifier: GPL-3.0-or-later

#include "engine/feed/Readings.h"

#include "engine/feed/ElementText.h"
#include "platform/Literals.h"

QString Readings::text(const FoundElement &found)
{
    return textOf(found.element);
}

QString Readings::joinedTexts(const FoundElement &found)
{
    QString joined;
    for (const xmlNode *node = found.element; node != nullptr; node = found.vocabulary.nextAlike(node)) {
        const QString text = textOf(node);
        if (text.isEmpty())
            continue;
        if (!joined.isEmpty())
            joined += ", "_L1;
        joined += text;
    }
    return joined;
}

QString Readings::attribute(const FoundElement &found)
{
    return attributeOf(found.element, found.detail);
}

QString Readings::childText(const FoundElement &found)
{
    return textOf(found.vocabulary.ownChild(found.element, found.detail));
}

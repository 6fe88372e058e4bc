// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <libxml/tree.h>

/// What is known of a document from its reading on. It lies behind the document's private pointer.
struct DocumentNotes
{
    /// Namespaces may have addresses that must be escaped: writing the others needs no walk through the tree.
    bool addressesMustBeEscaped = false;

    /// The document is so near a bound, or made in such a way, that only trying tells whether it can be written and
    /// read again.
    bool mustBeTried = false;

    /// How many declarations of namespaces are in force at once at most.
    int declarations = 0;

    /// Those of a document, made when it has none; they live as long as it.
    static DocumentNotes &of(xmlDoc &document)
    {
        if (document._private == nullptr)
            document._private = new DocumentNotes;
        return *static_cast<DocumentNotes *>(document._private);
    }

    static DocumentNotes of(const xmlDoc &document)
    {
        return document._private == nullptr ? DocumentNotes() : *static_cast<const DocumentNotes *>(document._private);
    }
};

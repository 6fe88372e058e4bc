// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "engine/feed/FeedTypes.h"

#include <libxml/tree.h>

/// Fills a new item element that stands in its document already. Texts that are empty leave no element.
class ItemWriter final
{
public:
    /// `item` bears the namespace of the format's own elements.
    explicit ItemWriter(xmlNode *item) : m_item(item) {}

    xmlNode *item() const { return m_item; }

    /// What an item that must be named is named by: its link, or, without one, an address that leads nowhere and is the
    /// same for the same title and description.
    static QString nameFor(const ItemContent &content);

    /// Adds an element of the format's own and returns it; null when the text is empty.
    xmlNode *add(const char *name, const QString &text);

    /// Adds an element of the format's own, also when it is empty.
    xmlNode *addElement(const char *name, const QString &text = {});

    /// Adds an element of the Dublin Core.
    void addDc(const char *name, const QString &text);

    /// Adds an element of the format's own to one that was added before.
    static void addInto(xmlNode *parent, const char *name, const QString &text);

    static void setAttribute(xmlNode *element, const char *name, const QString &value, xmlNs *ns = nullptr);

private:
    xmlNode *m_item;
};

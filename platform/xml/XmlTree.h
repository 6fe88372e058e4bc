// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/xml/XmlGate.h"

#include <algorithm>
#include <vector>

/// What the handles of one document share: the tree of libxml2, and the nodes that stand outside it at present.
struct XmlTree
{
    XmlDocPtr document;
    std::vector<xmlNode *> outside;

    XmlTree() = default;
    XmlTree(const XmlTree &) = delete;
    XmlTree &operator=(const XmlTree &) = delete;
    ~XmlTree()
    {
        for (xmlNode *node : outside)
            xmlFreeNode(node);
    }

    void takeIn(xmlNode *node)
    {
        xmlUnlinkNode(node);
        outside.erase(std::remove(outside.begin(), outside.end(), node), outside.end());
    }

    void takeOut(xmlNode *node)
    {
        takeIn(node);
        outside.push_back(node);
    }
};

inline const xmlChar *xmlChars(const QByteArray &utf8)
{
    return reinterpret_cast<const xmlChar *>(utf8.constData());
}

/// Goes down from `node` by the qualified names of the path "a/b"; null where a step leads nowhere.
xmlNode *xmlElementAt(xmlNode *node, const QString &path);

// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "platform/xml/XmlGate.h"

#include <string_view>

/// The start of an element, as the library tells it. The texts live as long as the call in which they are told.
struct XmlTag
{
    const xmlChar *name;    ///< without prefix
    const xmlChar *address; ///< of the namespace; null for none
    int attributes;
    const xmlChar **values; ///< name, prefix, address, begin and end of the text, for each attribute in turn
};

/// Is told what stands in a document, in its order. Comments and instructions aren't told.
class XmlListener
{
public:
    virtual void begin(const XmlTag &tag) = 0;
    virtual void end() = 0;
    virtual void text(std::string_view piece) = 0; ///< a text may come in several pieces

protected:
    XmlListener() = default;
    XmlListener(const XmlListener &) = default;
    XmlListener &operator=(const XmlListener &) = default;
    ~XmlListener() = default;
};

namespace XmlGate {

/// Reads as parse() does, without making a tree. False for what parse() would refuse, and for a document that refers to
/// entities of its own: what this program writes never does.
bool readThrough(const QByteArray &bytes, const XmlBounds &bounds, XmlListener &listener);

} // namespace XmlGate

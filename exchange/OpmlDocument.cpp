// SPDX-License-Identifier: GPL-3.0-or-later

#include "exchange/OpmlDocument.h"

#include "platform/Literals.h"
#include "platform/RunTimeError.h"
#include "platform/xml/XmlDocument.h"

namespace {

std::vector<XmlNode> outlinesOf(const XmlDocument &document)
{
    return document.selectSingleNode(u"opml"_s).selectSingleNode(u"body"_s).selectNodes(u"outline"_s);
}

} // namespace

OpmlDocument::OpmlDocument() : m_document(std::make_unique<XmlDocument>()) {}

OpmlDocument::~OpmlDocument() = default;

bool OpmlDocument::load(const QString &path)
{
    return m_document->load(path) == XmlDocument::LoadResult::Loaded;
}

bool OpmlDocument::loadXml(const QByteArray &bytes)
{
    return m_document->loadXml(bytes) == XmlDocument::LoadResult::Loaded;
}

OpmlDocument::List OpmlDocument::list() const
{
    const XmlNode opml = m_document->selectSingleNode(u"opml"_s);
    List list;
    list.title = opml.selectSingleNode(u"head"_s).selectSingleNode(u"title"_s).text();
    int position = 0;
    for (const XmlNode &outline : outlinesOf(*m_document)) {
        if (const auto address = outline.attribute(u"xmlUrl"_s))
            list.feeds.push_back({position, outline.requiredAttribute(u"text"_s), *address});
        ++position;
    }
    return list;
}

QString OpmlDocument::description(int position) const
{
    const std::vector<XmlNode> outlines = outlinesOf(*m_document);
    if (position < 0 || static_cast<std::size_t>(position) >= outlines.size())
        throw RunTimeError::objectNotSet();
    return outlines[static_cast<std::size_t>(position)].attribute(u"description"_s).value_or(u"/"_s);
}

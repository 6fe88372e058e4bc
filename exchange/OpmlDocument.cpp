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

std::optional<OpmlDocument::List> OpmlDocument::list() const
{
    const XmlNode title = m_document->selectSingleNode(u"opml/head/title"_s);
    if (!title || !m_document->selectSingleNode(u"opml/body"_s))
        return std::nullopt;
    List list{title.text(), {}};
    int position = 0;
    for (const XmlNode &outline : outlinesOf(*m_document)) {
        if (const auto address = outline.attribute(u"xmlUrl"_s)) {
            const auto text = outline.attribute(u"text"_s);
            if (!text)
                return std::nullopt;
            list.feeds.push_back({position, *text, *address});
        }
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

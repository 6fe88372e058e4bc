#include "exchange/OpmlDocument.h"

#include "platform/RunTimeError.h"
#include "platform/xml/XmlDocument.h"

namespace {

std::vector<XmlNode> outlinesOf(const XmlDocument &document)
{
    return document.selectSingleNode(QStringLiteral("opml"))
        .selectSingleNode(QStringLiteral("body"))
        .selectNodes(QStringLiteral("outline"));
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
    const XmlNode opml = m_document->selectSingleNode(QStringLiteral("opml"));
    List list;
    list.title = opml.selectSingleNode(QStringLiteral("head")).selectSingleNode(QStringLiteral("title")).text();
    int position = 0;
    for (const XmlNode &outline : outlinesOf(*m_document)) {
        if (const auto address = outline.attribute(QStringLiteral("xmlUrl")))
            list.feeds.push_back({position, outline.requiredAttribute(QStringLiteral("text")), *address});
        ++position;
    }
    return list;
}

QString OpmlDocument::description(int position) const
{
    const std::vector<XmlNode> outlines = outlinesOf(*m_document);
    if (position < 0 || static_cast<std::size_t>(position) >= outlines.size())
        throw RunTimeError::objectNotSet();
    return outlines[static_cast<std::size_t>(position)]
        .attribute(QStringLiteral("description"))
        .value_or(QStringLiteral("/"));
}

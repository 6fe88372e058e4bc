#include "dialogs/OpmlList.h"

#include "platform/RunTimeError.h"

namespace {

std::vector<XmlNode> outlinesOf(const XmlDocument &document)
{
    return document.selectSingleNode(QStringLiteral("opml"))
        .selectSingleNode(QStringLiteral("body"))
        .selectNodes(QStringLiteral("outline"));
}

} // namespace

OpmlList readOpmlList(const XmlDocument &document)
{
    const XmlNode opml = document.selectSingleNode(QStringLiteral("opml"));
    OpmlList list;
    list.title = opml.selectSingleNode(QStringLiteral("head")).selectSingleNode(QStringLiteral("title")).text();
    int position = 0;
    for (const XmlNode &outline : outlinesOf(document)) {
        if (const auto address = outline.attribute(QStringLiteral("xmlUrl")))
            list.feeds.push_back({position, outline.requiredAttribute(QStringLiteral("text")), *address});
        ++position;
    }
    return list;
}

QString outlineDescription(const XmlDocument &document, int position)
{
    const std::vector<XmlNode> outlines = outlinesOf(document);
    if (position < 0 || static_cast<std::size_t>(position) >= outlines.size())
        throw RunTimeError::objectNotSet();
    return outlines[static_cast<std::size_t>(position)]
        .attribute(QStringLiteral("description"))
        .value_or(QStringLiteral("/"));
}

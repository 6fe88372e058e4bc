#include "engine/feed/FeedFormat.h"

#include "engine/feed/ElementText.h"
#include "platform/Numbers.h"

#include <algorithm>
#include <cmath>
#include <limits>

const xmlNode *FeedFormat::image(xmlNode *, const ChildElements &) const
{
    return nullptr;
}

FeedImage FeedFormat::imageFrom(const xmlNode *image) const
{
    const ChildElements children(family(), image);
    FeedImage result;
    result.Url = textOf(children.first(Element::Url));
    result.Title = textOf(children.first(Element::Title));
    result.Link = textOf(children.first(Element::Link));
    result.Width = sizeOf(textOf(children.first(Element::Width)));
    result.Height = sizeOf(textOf(children.first(Element::Height)));
    result.Description = textOf(children.first(Element::Description));
    return result;
}

std::optional<ItemSource> FeedFormat::source(const ChildElements &) const
{
    return std::nullopt;
}

std::optional<ItemEnclosure> FeedFormat::enclosure(const ChildElements &) const
{
    return std::nullopt;
}

void FeedFormat::completeCopy(ItemWriter &, const ChildElements &, const ChildElements &) const {}

xmlNode *FeedFormat::enterIntoList(xmlNode *, xmlNode *, xmlNode *) const
{
    return nullptr;
}

void FeedFormat::removeFromList(xmlNode *, const std::vector<xmlNode *> &) const {}

QString FeedFormat::firstText(const ChildElements &children, std::initializer_list<Element> kinds)
{
    for (const Element kind : kinds) {
        QString text = textOf(children.first(kind));
        if (!text.isEmpty())
            return text;
    }
    return {};
}

QString FeedFormat::joinedTexts(const ChildElements &children, Element kind) const
{
    QString joined;
    for (const xmlNode *node = children.first(kind); node != nullptr; node = nextOfKind(family(), node)) {
        const QString text = textOf(node);
        if (text.isEmpty())
            continue;
        if (!joined.isEmpty())
            joined += QLatin1String(", ");
        joined += text;
    }
    return joined;
}

qint32 FeedFormat::lengthOf(const QString &text)
{
    if (!Numbers::isNumeric(text))
        return 0;
    constexpr double largest = std::numeric_limits<qint32>::max();
    return static_cast<qint32>(std::nearbyint(std::clamp(Numbers::toDouble(text), 0.0, largest)));
}

qint16 FeedFormat::sizeOf(const QString &text)
{
    if (!Numbers::isNumeric(text))
        return -1;
    constexpr double largest = std::numeric_limits<qint16>::max();
    const double size = Numbers::toDouble(text);
    return size < 0 ? qint16(-1) : static_cast<qint16>(std::nearbyint(std::min(size, largest)));
}

ItemContent readItem(const FeedFormat &format, const ChildElements &item, const ChildElements &channel)
{
    const auto text = [&](ItemField field) { return format.itemText(field, item, channel); };
    return {text(ItemField::Title),    text(ItemField::Link),   text(ItemField::Description),
            text(ItemField::Category), text(ItemField::Author), text(ItemField::Comments),
            text(ItemField::PubDate),  format.source(item),     format.enclosure(item)};
}

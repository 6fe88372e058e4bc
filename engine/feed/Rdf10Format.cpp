#include "engine/feed/ElementText.h"
#include "engine/feed/FeedFormat.h"
#include "engine/feed/ItemWriter.h"

#include <QCryptographicHash>
#include <QSet>

#include <cstring>

namespace {

bool isNamed(const xmlNode *element, const char *name)
{
    return std::strcmp(reinterpret_cast<const char *>(element->name), name) == 0;
}

bool isRdfElement(const xmlNode *element, const char *name)
{
    return isNamed(element, name) && kindOf(element->ns) == Namespace::Rdf;
}

QString aboutOf(const xmlNode *item)
{
    return attributeOf(item, "about", NamespaceName::rdf);
}

QString resourceOf(const xmlNode *entry)
{
    const QString resource = attributeOf(entry, "resource", NamespaceName::rdf);
    return resource.isEmpty() ? attributeOf(entry, "resource") : resource; // old feeds leave out the prefix
}

void setRdfAttribute(xmlNode *element, const char *name, const QString &value)
{
    xmlNs *ns = declaredNamespace(element, NamespaceName::rdf, "rdf", true);
    xmlSetNsProp(element, ns, reinterpret_cast<const xmlChar *>(name),
                 reinterpret_cast<const xmlChar *>(value.toUtf8().constData()));
}

/// Every item must be named by an address, one without link too.
QString nameFor(const ItemContent &content)
{
    if (!content.link.isEmpty())
        return content.link;
    const QByteArray text = (content.title + u'\n' + content.description).toUtf8();
    return QLatin1String("urn:quillwire:item:") +
           QString::fromLatin1(QCryptographicHash::hash(text, QCryptographicHash::Sha1).toHex());
}

/// RDF Site Summary 1.0. Items stand beside the channel, which lists them by address; their order is that of the
/// document.
class Rdf10Format final : public FeedFormat
{
public:
    FeedVersion version() const override { return Rdf10; }
    Family family() const override { return Family::Rdf; }
    xmlNode *channel(xmlNode *root) const override { return child(root, "channel"); }
    xmlNode *itemParent(xmlNode *root) const override { return root; }
    const char *itemName() const override { return "item"; }

    QString channelText(ChannelField field, const ChildElements &channel, const xmlNode *) const override
    {
        switch (field) {
        case ChannelField::Title:
            return firstText(channel, {Element::Title, Element::DcTitle});
        case ChannelField::Link:
            return firstText(channel, {Element::Link});
        case ChannelField::Description:
            return firstText(channel, {Element::Description, Element::DcDescription});
        case ChannelField::Language:
            return firstText(channel, {Element::DcLanguage});
        case ChannelField::Copyright:
            return firstText(channel, {Element::DcRights});
        case ChannelField::ManagingEditor:
            return firstText(channel, {Element::DcCreator});
        case ChannelField::WebMaster:
            return firstText(channel, {Element::DcPublisher});
        case ChannelField::Ttl:
            return {};
        }
        return {};
    }

    QString itemText(ItemField field, const ChildElements &item, const ChildElements &) const override
    {
        switch (field) {
        case ItemField::Title:
            return firstText(item, {Element::Title, Element::DcTitle});
        case ItemField::Link:
            return firstText(item, {Element::Link});
        case ItemField::Description:
            return firstText(item, {Element::ContentEncoded, Element::Description, Element::DcDescription});
        case ItemField::Category:
            return joinedTexts(item, Element::DcSubject);
        case ItemField::Author:
            return firstText(item, {Element::DcCreator});
        case ItemField::PubDate:
            return firstText(item, {Element::DcDate});
        case ItemField::Comments:
            return {};
        }
        return {};
    }

    /// The picture stands beside the channel; the channel's own image element only points at it.
    const xmlNode *image(xmlNode *root, const ChildElements &) const override { return child(root, "image"); }

    FeedImage imageFrom(const xmlNode *image) const override
    {
        FeedImage result = FeedFormat::imageFrom(image);
        result.Width = -1;
        result.Height = -1;
        result.Description.clear();
        return result;
    }

    void write(ItemWriter &item, const ItemContent &content) const override
    {
        setRdfAttribute(item.item(), "about", nameFor(content));
        item.addElement("title", content.title);
        item.addElement("link", content.link);
        item.add("description", content.description);
        item.addDc("subject", content.category);
        item.addDc("creator", content.author);
        item.addDc("date", content.pubDate);
    }

    void completeCopy(ItemWriter &copy, const ChildElements &original, const ChildElements &itsChannel) const override
    {
        if (aboutOf(copy.item()).isEmpty())
            setRdfAttribute(copy.item(), "about", nameFor(readItem(*this, original, itsChannel)));
    }

    xmlNode *enterIntoList(xmlNode *root, xmlNode *item, xmlNode *after) const override
    {
        xmlNode *list = after != nullptr ? after->parent : listOfItems(root);
        if (list == nullptr)
            return nullptr;
        xmlNs *ns = declaredNamespace(list, NamespaceName::rdf, "rdf", true);
        xmlNode *entry = xmlNewDocNode(root->doc, ns, reinterpret_cast<const xmlChar *>("li"), nullptr);
        if (after != nullptr)
            xmlAddNextSibling(after, entry);
        else if (list->children != nullptr)
            xmlAddPrevSibling(list->children, entry);
        else
            xmlAddChild(list, entry);
        setRdfAttribute(entry, "resource", aboutOf(item));
        return entry;
    }

    void removeFromList(xmlNode *root, const std::vector<xmlNode *> &dropped) const override
    {
        QSet<QString> gone;
        for (const xmlNode *item : dropped)
            gone.insert(aboutOf(item));
        for (const xmlNode *node = elementFrom(root->children); node != nullptr; node = elementFrom(node->next))
            if (isNamed(node, "item") && belongsTo(family(), node))
                gone.remove(aboutOf(node));
        xmlNode *list = gone.isEmpty() ? nullptr : existingList(root);
        xmlNode *entry = list == nullptr ? nullptr : elementFrom(list->children);
        while (entry != nullptr) {
            xmlNode *next = elementFrom(entry->next);
            if (isRdfElement(entry, "li") && gone.contains(resourceOf(entry))) {
                xmlUnlinkNode(entry);
                xmlFreeNode(entry);
            }
            entry = next;
        }
    }

private:
    xmlNode *child(xmlNode *parent, const char *name) const
    {
        for (xmlNode *node = elementFrom(parent->children); node != nullptr; node = elementFrom(node->next))
            if (isNamed(node, name) && belongsTo(family(), node))
                return node;
        return nullptr;
    }

    xmlNode *existingList(xmlNode *root) const
    {
        xmlNode *items = child(channel(root), "items");
        for (xmlNode *node = items == nullptr ? nullptr : elementFrom(items->children); node != nullptr;
             node = elementFrom(node->next))
            if (isRdfElement(node, "Seq"))
                return node;
        return nullptr;
    }

    /// The list, made when the channel has none.
    xmlNode *listOfItems(xmlNode *root) const
    {
        if (xmlNode *list = existingList(root))
            return list;
        xmlNode *itsChannel = channel(root);
        xmlNode *items = child(itsChannel, "items");
        if (items == nullptr)
            items = xmlNewChild(itsChannel, itsChannel->ns, reinterpret_cast<const xmlChar *>("items"), nullptr);
        xmlNs *ns = declaredNamespace(items, NamespaceName::rdf, "rdf", true);
        return xmlNewChild(items, ns, reinterpret_cast<const xmlChar *>("Seq"), nullptr);
    }
};

} // namespace

const FeedFormat &rdf10Format()
{
    static const Rdf10Format format;
    return format;
}

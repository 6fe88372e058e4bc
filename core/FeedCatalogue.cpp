// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/FeedCatalogue.h"

#include "core/FeedTreeState.h"
#include "platform/Files.h"
#include "platform/Literals.h"
#include "platform/Numbers.h"
#include "platform/RunTimeError.h"
#include "platform/xml/XmlDocument.h"
#include "support/clsDES.h"

#include <algorithm>
#include <limits>

namespace {

QString rootKey()
{
    return u"root"_s;
}

QString fileName()
{
    return u"feeds.xml"_s;
}

XmlNode favorisOf(const XmlDocument &document)
{
    return document.selectSingleNode(u"favoris"_s);
}

QString keyOf(const XmlNode &element)
{
    return element.requiredAttribute(u"key"_s);
}

/// The element of a folder's node; that of the root is `favoris`.
XmlNode folderElement(const FeedNodePtr &folder, const XmlNode &favoris)
{
    const XmlNode found = FeedCatalogue::findCatalogueNode(folder->key(), favoris);
    return found ? found : favoris;
}

/// Takes the element of that key out of the file's tree and gives it back.
XmlNode takeOut(const QString &key, const XmlNode &favoris)
{
    const XmlNode element = FeedCatalogue::findCatalogueNode(key, favoris);
    element.parentNode().removeChild(element);
    return element;
}

/// A copy of `from` that only has to take its name; null when `from` is absent.
std::unique_ptr<Files::Staged> stagedCopy(const QString &from, const QString &to)
{
    const Files::Content content = Files::read(from);
    if (content.result == Files::ReadResult::Absent)
        return nullptr;
    if (content.result == Files::ReadResult::Unreadable)
        throw RunTimeError::deviceError();
    return std::make_unique<Files::Staged>(to, content.bytes);
}

} // namespace

FeedCatalogue::FeedCatalogue(DataDirectory directory, FeedTree &tree, FeedTreeState &treeState, clsDES &cipher,
                             Clock clock)
    : m_directory(std::move(directory)), m_tree(tree), m_treeState(treeState), m_cipher(cipher),
      m_clock(std::move(clock)), m_usedKeys{0}
{}

XmlDocument FeedCatalogue::loadFile() const
{
    XmlDocument document;
    document.load(m_directory.file(fileName()));
    return document;
}

void FeedCatalogue::loadCatalogue()
{
    const XmlDocument document = loadFile();
    if (const XmlNode favoris = favorisOf(document)) {
        const FeedNodePtr root = m_tree.addRoot(rootKey(), u"Favoris"_s, NodeImage::Root);
        walkLoad(favoris, root);
        nextFreeKey();
    }
    const FeedNodePtr root = m_tree.find(rootKey());
    if (!root)
        throw RunTimeError::elementNotFound();
    m_treeState.bringIntoView(root);
}

void FeedCatalogue::walkLoad(const XmlNode &element, const FeedNodePtr &parent)
{
    for (const XmlNode &child : element.childNodes()) {
        keyOf(child); // whatever stands here has to bear a key, a comment too
        const QString name = child.nodeName();
        if (name == u"dir")
            loadFolder(child, parent);
        else if (name == u"feed")
            loadFeed(child, parent);
    }
}

void FeedCatalogue::loadFolder(const XmlNode &element, const FeedNodePtr &parent)
{
    const QString key = keyOf(element);
    const FeedNodePtr folder = m_tree.addChild(parent, key, element.requiredAttribute(u"name"_s), NodeImage::Folder);
    takeKey(key);
    walkLoad(element, folder);
    if (element.attribute(u"visible"_s) == u"0"_s)
        m_treeState.setExpanded(folder, false);
}

void FeedCatalogue::loadFeed(const XmlNode &element, const FeedNodePtr &parent)
{
    const QString key = keyOf(element);
    const FeedNodePtr feed = m_tree.addChild(parent, key, element.requiredAttribute(u"name"_s), NodeImage::Feed);
    feed->tag = element.requiredAttribute(u"url"_s);
    m_treeState.bringIntoView(feed);
    takeKey(key);

    tables.updatettl.Add(key, element.attribute(u"ttl"_s).value_or(u"60"_s));
    tables.updatecache.Add(key, element.attribute(u"cache"_s).value_or(u"-7"_s));
    const std::optional<QString> lastUpdate = element.attribute(u"lastupdate"_s);
    tables.updatedate.Add(key, lastUpdate ? UpdateDate(*lastUpdate) : UpdateDate(m_clock()));
    tables.havecache.Add(key, u"0"_s);
    tables.nodeByKey.Add(key, feed);

    const std::optional<QString> username = element.attribute(u"username"_s);
    const std::optional<QString> password = element.attribute(u"password"_s);
    if (username && password) {
        tables.usernames.Add(key, *username);
        tables.passwords.Add(key, *password);
    }
}

void FeedCatalogue::takeKey(const QString &key)
{
    // The last place stays 0, so that the search for a free key counts up from 1.
    m_usedKeys.back() = Numbers::toInt16(key);
    m_usedKeys.push_back(0);
}

void FeedCatalogue::nextFreeKey()
{
    std::vector<qint16> sorted = m_usedKeys;
    std::sort(sorted.begin(), sorted.end());
    // A key that is there twice stops the count: with a key 0 in the file the next key is 1, taken or not, and the next
    // subscription says so by its error instead of going on with a catalogue that was edited badly by hand.
    qint16 next = 0;
    for (const qint16 key : sorted) {
        if (key != next)
            break;
        if (next == std::numeric_limits<qint16>::max())
            throw RunTimeError::overflow();
        ++next;
    }
    m_nextKey = next;
}

void FeedCatalogue::addFeed(const NewFeed &feed)
{
    const FeedNodePtr selected = m_treeState.selected();
    FeedNodePtr parent;
    if (!selected || selected->image() == NodeImage::Root)
        parent = m_tree.root();
    else if (selected->image() == NodeImage::Feed)
        parent = selected->parent();
    else if (selected->image() == NodeImage::Folder)
        parent = selected;
    const QString key = QString::number(m_nextKey);
    const FeedNodePtr node = m_tree.addChild(parent, key, feed.title, NodeImage::Feed);
    m_treeState.setExpanded(parent, true);
    node->tag = feed.address;

    const std::unique_ptr<Files::Staged> cacheFile =
        stagedCopy(m_directory.file(u"tmp.xml"_s), m_directory.cacheFile(key));
    const QString ttl = feed.ttl.isEmpty() ? u"60"_s : feed.ttl;
    const QString cache = u"-7"_s;
    XmlDocument document = loadFile();
    XmlNode element = document.createElement(u"feed"_s);
    element.setAttribute(u"name"_s, feed.title);
    element.setAttribute(u"url"_s, feed.address);
    element.setAttribute(u"key"_s, key);
    element.setAttribute(u"ttl"_s, ttl);
    element.setAttribute(u"cache"_s, cache);
    if (!feed.password.isEmpty() && !feed.username.isEmpty()) {
        element.setAttribute(u"username"_s, feed.username);
        element.setAttribute(u"password"_s, m_cipher.EncryptString(feed.password, cipherKey(key), true));
    }
    folderElement(parent, favorisOf(document)).appendChild(element);
    document.save(m_directory.file(fileName()));

    tables.updatettl.Add(key, ttl);
    tables.updatecache.Add(key, cache);
    tables.updatedate.Add(key, UpdateDate(m_clock()));
    tables.havecache.Add(key, u"0"_s);
    tables.nodeByKey.Add(key, node);

    if (!cacheFile)
        throw RunTimeError::fileNotFound();
    try {
        cacheFile->commit();
    } catch (const RunTimeError &) {
        takeOut(key, favorisOf(document)); // a feed without a cache file would hang the updates of every run
        document.save(m_directory.file(fileName()));
        throw;
    }
    takeKey(key);
    nextFreeKey();
}

void FeedCatalogue::deleteCatalogueFolder(const FeedNodePtr &folder)
{
    const std::vector<FeedNodePtr> children = folder->children();
    for (const FeedNodePtr &child : children) {
        if (child->image() == NodeImage::Folder)
            deleteCatalogueFolder(child);
        else if (child->image() == NodeImage::Feed)
            deleteCatalogueFeed(child->key());
    }
    const XmlDocument document = loadFile();
    takeOut(folder->key(), favorisOf(document));
    document.save(m_directory.file(fileName()));
}

void FeedCatalogue::deleteCatalogueFeed(const QString &key)
{
    const XmlDocument document = loadFile();
    takeOut(key, favorisOf(document));
    document.save(m_directory.file(fileName()));
    Files::remove(m_directory.cacheFile(key));
}

void FeedCatalogue::createFolder(const FeedNodePtr &node, const QString &name)
{
    if (name.isEmpty())
        return;
    const FeedNodePtr parent = node && node->image() == NodeImage::Feed ? node->parent() : node;
    const QString key = QString::number(m_nextKey);
    m_tree.addChild(parent, key, name, NodeImage::Folder);
    m_treeState.setExpanded(parent, true);

    XmlDocument document = loadFile();
    XmlNode element = document.createElement(u"dir"_s);
    element.setAttribute(u"name"_s, name);
    element.setAttribute(u"key"_s, key);
    element.setAttribute(u"visible"_s, u"1"_s);
    folderElement(parent, favorisOf(document)).appendChild(element);
    document.save(m_directory.file(fileName()));

    takeKey(key);
    nextFreeKey();
}

void FeedCatalogue::moveFeed(const FeedNodePtr &dragged, const FeedNodePtr &target, bool insertAbove)
{
    if (!dragged || !target || dragged->key() == target->key() || dragged->image() != NodeImage::Feed)
        return;
    const XmlDocument document = loadFile();
    const XmlNode favoris = favorisOf(document);
    const XmlNode moved = findCatalogueNode(dragged->key(), favoris);
    const QString key = dragged->key();
    const QString text = dragged->text();
    const int targetImage = target->image();
    const FeedNodePtr targetParent = target->parent();
    m_tree.remove(dragged);

    // The new node has no address until the next start: the drag carries key, text and picture, and no update runs
    // from a place that the file may not agree with.
    if (targetImage == NodeImage::Feed) {
        // The root has no element of that key: a drop on a feed right under it ends in a run-time error here, before
        // the file is written (the catalogue's tests hold it).
        XmlNode parentElement = findCatalogueNode(targetParent->key(), favoris);
        m_tree.addBeside(target, insertAbove, key, text, NodeImage::Feed);
        const XmlNode targetElement = findCatalogueNode(target->key(), favoris);
        parentElement.insertBefore(moved, targetElement); // before, whatever side the user dropped on
    } else {
        const bool intoFolder = targetImage == NodeImage::Folder;
        m_tree.addChild(intoFolder ? target : m_tree.root(), key, text, NodeImage::Feed);
        XmlNode folder = intoFolder ? findCatalogueNode(target->key(), favoris) : favoris;
        folder.appendChild(moved);
    }
    document.save(m_directory.file(fileName()));
}

void FeedCatalogue::saveCatalogueState()
{
    XmlDocument document;
    const QString path = m_directory.file(fileName());
    if (document.load(path) != XmlDocument::LoadResult::Loaded)
        return;
    if (const XmlNode favoris = favorisOf(document))
        walkSave(favoris);
    document.save(path);
}

void FeedCatalogue::walkSave(const XmlNode &element)
{
    for (XmlNode child : element.childNodes()) {
        const QString name = child.nodeName();
        if (name == u"dir") {
            const FeedNodePtr folder = m_tree.find(keyOf(child));
            if (!folder)
                throw RunTimeError::objectNotSet();
            child.requiredAttribute(u"visible"_s);
            child.setAttribute(u"visible"_s, m_treeState.isExpanded(folder) ? u"1"_s : u"0"_s);
            walkSave(child);
        } else if (name == u"feed") {
            saveFeed(child);
        }
    }
}

void FeedCatalogue::saveFeed(XmlNode element) const
{
    const QString key = keyOf(element);
    element.setAttribute(u"ttl"_s, tables.updatettl.Item(key));
    element.setAttribute(u"cache"_s, tables.updatecache.Item(key));
    element.setAttribute(u"lastupdate"_s, tables.updatedate.Item(key).text());
    if (!tables.usernames.Exists(key))
        return;
    // These two aren't made here: a feed that has credentials in the tables has to bear them.
    element.requiredAttribute(u"username"_s);
    element.setAttribute(u"username"_s, tables.usernames.Item(key));
    element.requiredAttribute(u"password"_s);
    element.setAttribute(u"password"_s, tables.passwords.Item(key));
}

QString FeedCatalogue::cipherKey(const QString &feedKey)
{
    return u"%%K9:Tm41"_s + feedKey;
}

XmlNode FeedCatalogue::findCatalogueNode(const QString &key, const XmlNode &start)
{
    for (const XmlNode &child : start.childNodes()) {
        if (child.attribute(u"key"_s) == key)
            return child;
        if (child.isElement() && child.nodeName() == u"dir")
            if (const XmlNode found = findCatalogueNode(key, child))
                return found;
    }
    return {};
}

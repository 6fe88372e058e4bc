// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/FeedCatalogue.h"
#include "core/FeedTreeState.h"
#include "platform/Files.h"
#include "platform/Literals.h"
#include "platform/RunTimeError.h"
#include "support/clsDES.h"

#include <QDir>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>

namespace {

QStringList keysBelow(const FeedNodePtr &node)
{
    QStringList keys;
    for (const FeedNodePtr &child : node->children()) {
        keys.append(child->key());
        keys.append(keysBelow(child));
    }
    return keys;
}

} // namespace

/// Any bytes as feeds.xml: they load or raise a run-time error. What loads takes a folder and a feed, is written at the
/// end, and loads again with the same nodes.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    static const QTemporaryDir folder(u"/dev/shm/quillwire-XXXXXX"_s);
    static clsDES cipher;
    const DataDirectory directory(folder.path());
    QDir(folder.path()).mkpath(u"feeds"_s);
    Files::write(directory.file(u"tmp.xml"_s), "<rss/>");
    Files::write(directory.file(u"feeds.xml"_s),
                 QByteArray(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)));
    const Clock clock = [] { return QDateTime(QDate(2004, 7, 1), QTime(12, 0)); };
    FeedTree tree;
    FeedTreeState state(tree);
    FeedCatalogue catalogue(directory, tree, state, cipher, clock);
    try {
        catalogue.loadCatalogue();
        catalogue.createFolder(tree.root(), u"Folder"_s);
        catalogue.addFeed({u"Feed"_s, {}, u"http://example.org/"_s, {}, {}});
        catalogue.saveCatalogueState();
    } catch (const RunTimeError &) {
        return 0;
    }
    FeedTree treeAgain;
    FeedTreeState stateAgain(treeAgain);
    FeedCatalogue again(directory, treeAgain, stateAgain, cipher, clock);
    again.loadCatalogue();
    if (keysBelow(tree.root()) != keysBelow(treeAgain.root()))
        __builtin_trap();
    return 0;
}

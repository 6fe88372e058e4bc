// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/FeedCatalogue.h"
#include "core/FeedTreeState.h"
#include "platform/Literals.h"
#include "support/clsDES.h"
#include "tests/fixtures/Golden.h"
#include "tests/fixtures/RunTimeErrors.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QAbstractItemModelTester>
#include <QRegularExpression>
#include <QTest>

/// The tree, what is selected and open in it, the tables and the file of the catalogue, as told in transcripts.
class FeedCatalogueTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void treeTablesAndFileAreAsTold_data()
    {
        QTest::addColumn<QString>("transcript");
        for (const char *name : {"tree", "catalogue", "moves", "broken"})
            QTest::newRow(name) << QString::fromLatin1(name) + u".txt";
    }

    void treeTablesAndFileAreAsTold()
    {
        QFETCH(const QString, transcript);
        const auto command = [this](const QStringList &words) {
            m_said.clear();
            if (const int error = errorOf([&] { follow(words); }))
                m_said.append(u"error %1"_s.arg(error));
            const QString now = m_tree->root() ? shape(m_tree->root()) : QString();
            if (std::exchange(m_shape, now) != now)
                m_said.append(u"tree: "_s + now);
            return m_said;
        };
        QCOMPARE(differenceFromGolden(transcript, playedAgain(
                                                      transcript, [this] { begin(); }, command)),
                 QString());
    }

    void hugeCataloguesRaiseAnError()
    {
        QByteArray flat;
        for (int i = 1; i <= 32767; ++i)
            flat += "<dir name='' visible='1' key='" + QByteArray::number(i) + "'/>";
        begin();
        qDeleteAll(m_tree->findChildren<QAbstractItemModelTester *>()); // each would look at all nodes for each node
        QCOMPARE(errorOf([&] { load("<favoris>" + flat + "</favoris>"); }), RunTimeError::overflow().number());
        flat.replace("/>", ">"); // deeper than what a reader of XML takes: refused, not crashed on
        begin();
        QCOMPARE(errorOf([&] { load("<favoris>" + flat + QByteArray("</dir>").repeated(32767) + "</favoris>"); }),
                 RunTimeError::elementNotFound().number());
    }

private:
    void begin()
    {
        m_folder = std::make_unique<TemporaryDataDirectory>();
        m_now = QDateTime(QDate(2004, 7, 1), QTime(14, 0));
        m_meanwhile = m_folder->directory().path();
        restart();
    }

    void restart()
    {
        m_shape.clear();
        m_nodes.clear();
        m_tree = std::make_unique<FeedTree>();
        m_state = std::make_unique<FeedTreeState>(*m_tree);
        m_catalogue = std::make_unique<FeedCatalogue>(m_folder->directory(), *m_tree, *m_state, m_cipher,
                                                      [this] { return QDir().mkpath(m_meanwhile), m_now; });
        new QAbstractItemModelTester(m_tree.get(), QAbstractItemModelTester::FailureReportingMode::QtTest,
                                     m_tree.get());
        const auto say = [this](const QString &what, const FeedNodePtr &node) {
            m_said.append(what + u' ' + (node ? node->key() : u"nothing"_s));
        };
        m_chosen.reset();
        connect(m_tree.get(), &FeedTree::rowsAboutToBeRemoved, this, [this] { m_state->select(m_chosen); });
        connect(m_tree.get(), &FeedTree::aboutToBeRemoved, this,
                [say](const FeedNodePtr &node) { say(u"goes"_s, node); });
        connect(m_tree.get(), &FeedTree::dataChanged, this,
                [this, say](const QModelIndex &first, const QModelIndex &last, const QList<int> &roles) {
                    QCOMPARE(first, last);
                    QCOMPARE(roles, (QList<int>{FeedTree::ImageRole, Qt::AccessibleTextRole}));
                    say(u"changed"_s, m_tree->node(first));
                });
        connect(m_state.get(), &FeedTreeState::selectionChanged, this,
                [say](const FeedNodePtr &node) { say(u"selected"_s, node); });
        connect(m_state.get(), &FeedTreeState::expansionChanged, this,
                [say](const FeedNodePtr &node, bool opens) { say(opens ? u"opened"_s : u"closed"_s, node); });
        connect(m_state.get(), &FeedTreeState::bringIntoViewAsked, this,
                [say](const FeedNodePtr &node) { say(u"in view"_s, node); });
    }

    void load(const QByteArray &file)
    {
        m_folder->write(u"feeds.xml"_s, file);
        m_catalogue->loadCatalogue();
    }

    /// Does a command. A node is named by its key, also after it went; "-" is nothing.
    void follow(const QStringList &words)
    {
        const auto text = [&words](int i) { return words.value(i) == u"-" ? QString() : words.value(i); };
        const QByteArray rest = words.mid(1).join(u' ').toUtf8();
        const FeedNodePtr one = m_nodes.value(text(1));
        const FeedNodePtr two = m_nodes.value(text(2));
        const int number = text(2).toInt();
        const QHash<QString, std::function<void()>> verbs = {
            {u"start"_s, [&] { load("<?xml version=\"1.0\"?>\n<favoris>" + rest + "</favoris>\n"); }},
            {u"start-with"_s, [&] { load(rest); }},
            {u"restart"_s, [&] { restart(), m_catalogue->loadCatalogue(); }},
            {u"write"_s, [&] { m_folder->write(text(1), rest.mid(rest.indexOf(' ') + 1)); }},
            {u"make-folder"_s, [&] { QDir().mkpath(m_folder->file(text(1))); }},
            {u"make-folder-meanwhile"_s, [&] { m_meanwhile = m_folder->file(text(1)); }},
            {u"file"_s, [&] { tellFile(m_folder->read(text(1))); }},
            {u"files"_s, [&] { m_said = QDir(m_folder->file(u"feeds"_s)).entryList(QDir::Files); }},
            {u"tables"_s, [&] { tellTables(); }},
            {u"table"_s, [&] { table(text(1)).Replace(text(2), text(3)); }},
            {u"updated"_s, [&] { m_catalogue->tables.updatedate.Replace(text(1), UpdateDate(m_now.addDays(number))); }},
            {u"rows"_s, [&] { tellRows(); }},
            {u"shown"_s, [&] { tellShown(one); }},
            {u"add"_s,
             [&] {
                 m_catalogue->addFeed({text(1), text(2), u"http://"_s + text(1), text(3), text(4)});
             }},
            {u"folder"_s, [&] { m_catalogue->createFolder(one, text(2)); }},
            {u"move"_s, [&] { m_catalogue->moveFeed(one, two, text(3) == u"above"); }},
            {u"unsubscribe"_s, [&] { m_catalogue->deleteCatalogueFeed(text(1)); }},
            {u"delete-folder"_s, [&] { m_catalogue->deleteCatalogueFolder(one); }},
            {u"save"_s, [&] { m_catalogue->saveCatalogueState(); }},
            {u"select"_s, [&] { m_state->select(one); }},
            {u"open"_s, [&] { m_state->setExpanded(one, true); }},
            {u"close"_s, [&] { m_state->setExpanded(one, false); }},
            {u"view"_s, [&] { m_state->bringIntoView(one); }},
            {u"remove"_s, [&] { m_tree->remove(one); }},
            {u"choose-while-rows-go"_s, [&] { m_chosen = one; }},
            {u"image"_s, [&] { m_tree->setImages(one, number, number); }},
            {u"root"_s, [&] { m_tree->addRoot(text(1), u"Root"_s, NodeImage::Root); }},
            {u"child"_s, [&] { m_tree->addChild(one, text(2), text(2), NodeImage::Feed); }},
            {u"beside"_s, [&] { m_tree->addBeside(one, text(2) == u"before", text(3), text(3), NodeImage::Feed); }}};
        verbs.value(words[0])();
    }

    Dictionary<QString> &table(const QString &name)
    {
        FeedTables &tables = m_catalogue->tables;
        return name == u"updatettl"     ? tables.updatettl
               : name == u"updatecache" ? tables.updatecache
               : name == u"havecache"   ? tables.havecache
               : name == u"usernames"   ? tables.usernames
                                        : tables.passwords;
    }
    /// An element a line. What is enciphered comes out otherwise each time.
    void tellFile(const QByteArray &file)
    {
        static const QRegularExpression enciphered(u"password=\"[^\"]{20,}\""_s);
        const QString text = QString::fromUtf8(file).trimmed().replace("><"_L1, ">\n<"_L1);
        m_said = QString(text).replace(enciphered, u"password=(enciphered)"_s).split(u'\n');
    }
    void tellTables()
    {
        const FeedTables &tables = m_catalogue->tables;
        for (const QString &key : tables.updatettl.Keys()) {
            QString password = tables.passwords.Item(key);
            m_said.append(u"%1: %2 minutes, %3 days, havecache %4, updated %5%6%7"_s.arg(
                key, tables.updatettl.Item(key), tables.updatecache.Item(key), tables.havecache.Item(key),
                tables.updatedate.Item(key).text(),
                tables.usernames.Exists(key) ? u", user "_s + tables.usernames.Item(key) + u' ' +
                                                   m_cipher.DecryptString(password, u"%%K9:Tm41"_s + key, true)
                                             : QString(),
                tables.nodeByKey.Item(key) && tables.nodeByKey.Item(key) == m_nodes.value(key) ? QString()
                                                                                               : u", another node"_s));
        }
        m_said.append(u"next key %1"_s.arg(m_catalogue->nextKey()));
    }
    /// The rows from the first to the last, as the view shows them, and back again.
    void tellRows()
    {
        QStringList keys;
        for (FeedNodePtr row = m_tree->root(); row; row = m_state->next(row))
            keys.append(row->key());
        QStringList back;
        for (FeedNodePtr row = m_tree->find(keys.back()); row; row = m_state->previous(row))
            back.prepend(row->key());
        m_said.append(keys == back ? keys.join(u' ') : u"the two ways differ"_s);
    }
    void tellShown(const FeedNodePtr &node)
    {
        const QModelIndex index = m_tree->indexOf(node);
        for (const int role :
             {int(Qt::DisplayRole), int(Qt::AccessibleTextRole), int(FeedTree::ImageRole), int(Qt::ToolTipRole)})
            m_said.append(u"%1: %2"_s.arg(role).arg(index.data(role).toString()));
        m_said.append(u"flags %1"_s.arg(m_tree->flags(index)));
    }
    /// A node with all below it: its key, a sign of its kind, its text, an address, "+" when it is open.
    QString shape(const FeedNodePtr &node)
    {
        m_nodes.insert(node->key(), node);
        const QString kind = u"?./:!="_s.mid(node->image(), 1);
        QStringList below;
        for (const FeedNodePtr &child : node->children())
            below.append(shape(child));
        return node->key() + kind + node->text() + (node->tag.isEmpty() ? QString() : u'@' + node->tag) +
               (m_state->isExpanded(node) ? u"+"_s : QString()) +
               (below.isEmpty() ? QString() : u'(' + below.join(u' ') + u')');
    }

    std::unique_ptr<TemporaryDataDirectory> m_folder;
    std::unique_ptr<FeedTree> m_tree;
    std::unique_ptr<FeedTreeState> m_state;
    std::unique_ptr<FeedCatalogue> m_catalogue;
    QHash<QString, FeedNodePtr> m_nodes; ///< those that went too
    FeedNodePtr m_chosen;
    clsDES m_cipher;
    QDateTime m_now;
    QString m_meanwhile; ///< a folder that comes when the clock is looked at
    QStringList m_said;
    QString m_shape;
};

QTEST_GUILESS_MAIN(FeedCatalogueTest)
#include "tst_FeedCatalogue.moc"

#include "core/FeedTree.h"
#include "platform/RunTimeError.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

class FeedTreeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void nodesStandWhereTheyWereAdded();
    void keysAreUniqueInTheWholeTree();
    void whatIsRemovedIsGoneWithAllBelowIt();
    void aRemovalTakesTheSelectionWithIt();
    void rowsFollowEachOtherAsTheViewShowsThem();
    void bringingIntoViewOpensWhatIsAbove();
    void theModelShowsTextImageAndKey();

private:
    QString shape(const FeedNodePtr &node) const;
    QString shape() const { return shape(m_tree->root()); }

    std::unique_ptr<FeedTree> m_tree;
    FeedNodePtr m_root;
    FeedNodePtr m_folder;
    FeedNodePtr m_inner;
};

/// Root with a folder 1 that holds feed 2 and a folder 3 with feed 4, and feed 5; the model tester watches each change.
void FeedTreeTest::init()
{
    m_tree = std::make_unique<FeedTree>();
    new QAbstractItemModelTester(m_tree.get(), QAbstractItemModelTester::FailureReportingMode::QtTest, m_tree.get());
    m_root = m_tree->addRoot(QStringLiteral("root"), QStringLiteral("Favoris"), NodeImage::Root);
    m_folder = m_tree->addChild(m_root, QStringLiteral("1"), QStringLiteral("Folder"), NodeImage::Folder);
    m_tree->addChild(m_folder, QStringLiteral("2"), QStringLiteral("Two"), NodeImage::Feed);
    m_inner = m_tree->addChild(m_folder, QStringLiteral("3"), QStringLiteral("Inner"), NodeImage::Folder);
    m_tree->addChild(m_inner, QStringLiteral("4"), QStringLiteral("Four"), NodeImage::Feed);
    m_tree->addChild(m_root, QStringLiteral("5"), QStringLiteral("Five"), NodeImage::Feed);
}

void FeedTreeTest::cleanup()
{
    m_root.reset();
    m_folder.reset();
    m_inner.reset();
    m_tree.reset();
}

QString FeedTreeTest::shape(const FeedNodePtr &node) const
{
    QString text = node->key();
    if (!node->children().empty()) {
        QStringList parts;
        for (const FeedNodePtr &child : node->children())
            parts.append(shape(child));
        text += u'(' + parts.join(u' ') + u')';
    }
    return text;
}

void FeedTreeTest::nodesStandWhereTheyWereAdded()
{
    QCOMPARE(shape(), QStringLiteral("root(1(2 3(4)) 5)"));
    m_tree->addBeside(m_tree->find(QStringLiteral("3")), true, QStringLiteral("6"), {}, NodeImage::Feed);
    m_tree->addBeside(m_tree->find(QStringLiteral("3")), false, QStringLiteral("7"), {}, NodeImage::Feed);
    QCOMPARE(shape(), QStringLiteral("root(1(2 6 3(4) 7) 5)"));
    QVERIFY_EXCEPTION_THROWN(m_tree->addChild(nullptr, QStringLiteral("8"), {}, NodeImage::Feed), RunTimeError);
    QVERIFY_EXCEPTION_THROWN(m_tree->addBeside(m_root, true, QStringLiteral("8"), {}, NodeImage::Feed), RunTimeError);
}

void FeedTreeTest::keysAreUniqueInTheWholeTree()
{
    try {
        m_tree->addChild(m_root, QStringLiteral("4"), {}, NodeImage::Feed);
        QFAIL("the key was taken");
    } catch (const RunTimeError &error) {
        QCOMPARE(error.number(), RunTimeError::keyNotUnique().number());
    }
    QCOMPARE(shape(), QStringLiteral("root(1(2 3(4)) 5)"));
}

void FeedTreeTest::whatIsRemovedIsGoneWithAllBelowIt()
{
    const FeedNodePtr four = m_tree->find(QStringLiteral("4"));
    m_tree->remove(m_root->children().front());
    QCOMPARE(shape(), QStringLiteral("root(5)"));
    for (const FeedNodePtr &node : {m_folder, m_inner, four}) {
        QCOMPARE(node->image(), NodeImage::Gone);
        QVERIFY(!node->parent());
        QVERIFY(node->children().empty());
        QVERIFY(!m_tree->find(node->key()));
        QVERIFY(!m_tree->indexOf(node).isValid());
    }
    QCOMPARE(four->text(), QStringLiteral("Four")); // still readable
    m_tree->setImages(four, NodeImage::Feed, NodeImage::Feed);
    m_tree->remove(four);
    m_tree->remove(nullptr);
    QCOMPARE(four->image(), NodeImage::Gone);
    QVERIFY_EXCEPTION_THROWN(m_tree->addChild(m_inner, QStringLiteral("9"), {}, NodeImage::Feed), RunTimeError);
    m_tree->addChild(m_root, QStringLiteral("4"), {}, NodeImage::Feed); // the key is free again
    m_tree->remove(m_root);
    QVERIFY(!m_tree->root());
    QCOMPARE(m_tree->rowCount(), 0);
}

void FeedTreeTest::aRemovalTakesTheSelectionWithIt()
{
    QSignalSpy spy(m_tree.get(), &FeedTree::selectionChanged);
    m_tree->select(m_tree->find(QStringLiteral("4")));
    m_tree->remove(m_tree->find(QStringLiteral("5")));
    QVERIFY(m_tree->selected());
    m_tree->remove(m_folder);
    QVERIFY(!m_tree->selected());
    QCOMPARE(spy.count(), 2);
    m_tree->select(m_folder); // a node that is gone selects nothing
    QVERIFY(!m_tree->selected());
}

void FeedTreeTest::rowsFollowEachOtherAsTheViewShowsThem()
{
    const auto rows = [this] {
        QStringList keys;
        for (FeedNodePtr node = m_root; node; node = m_tree->next(node))
            keys.append(node->key());
        QStringList back;
        for (FeedNodePtr node = m_tree->find(keys.back()); node; node = m_tree->previous(node))
            back.prepend(node->key());
        return keys == back ? keys.join(u' ') : QStringLiteral("the two ways differ");
    };
    QCOMPARE(rows(), QStringLiteral("root"));
    m_tree->setExpanded(m_root, true);
    QCOMPARE(rows(), QStringLiteral("root 1 5"));
    m_tree->setExpanded(m_inner, true);
    QCOMPARE(rows(), QStringLiteral("root 1 5"));
    m_tree->setExpanded(m_folder, true);
    QCOMPARE(rows(), QStringLiteral("root 1 2 3 4 5"));
    const FeedNodePtr five = m_tree->find(QStringLiteral("5"));
    m_tree->remove(five);
    QVERIFY(!m_tree->next(five) && !m_tree->previous(five) && !m_tree->next(nullptr));
}

void FeedTreeTest::bringingIntoViewOpensWhatIsAbove()
{
    QSignalSpy opened(m_tree.get(), &FeedTree::expansionChanged);
    QSignalSpy asked(m_tree.get(), &FeedTree::bringIntoViewAsked);
    m_tree->bringIntoView(m_tree->find(QStringLiteral("4")));
    QVERIFY(m_root->isExpanded() && m_folder->isExpanded() && m_inner->isExpanded());
    QCOMPARE(opened.count(), 3);
    QCOMPARE(asked.count(), 1);
    QVERIFY_EXCEPTION_THROWN(m_tree->bringIntoView(nullptr), RunTimeError);
}

void FeedTreeTest::theModelShowsTextImageAndKey()
{
    const FeedNodePtr four = m_tree->find(QStringLiteral("4"));
    const QModelIndex index = m_tree->indexOf(four);
    QCOMPARE(m_tree->node(index), four);
    QCOMPARE(m_tree->parent(index), m_tree->indexOf(m_inner));
    QCOMPARE(m_tree->data(index, Qt::DisplayRole).toString(), QStringLiteral("Four"));
    QCOMPARE(m_tree->data(index, FeedTree::KeyRole).toString(), QStringLiteral("4"));
    QSignalSpy changed(m_tree.get(), &FeedTree::dataChanged);
    m_tree->setImages(four, NodeImage::FeedUpdating, NodeImage::FeedUpdating);
    QCOMPARE(m_tree->data(index, FeedTree::ImageRole).toInt(), NodeImage::FeedUpdating);
    QCOMPARE(changed.count(), 1);
}

QTEST_GUILESS_MAIN(FeedTreeTest)
#include "tst_FeedTree.moc"

// SPDX-License-Identifier: GPL-3.0-or-later

#include "core/FeedTreeState.h"
#include "platform/Literals.h"
#include "platform/RunTimeError.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <QTest>

class FeedTreeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// Root with a folder 1 that holds feed 2 and a folder 3 with feed 4, and feed 5; the model tester watches each
    /// change.
    void init()
    {
        m_state.reset();
        m_tree = std::make_unique<FeedTree>();
        m_state = std::make_unique<FeedTreeState>(*m_tree);
        new QAbstractItemModelTester(m_tree.get(), QAbstractItemModelTester::FailureReportingMode::QtTest,
                                     m_tree.get());
        m_root = m_tree->addRoot(u"root"_s, u"Favoris"_s, NodeImage::Root);
        m_folder = m_tree->addChild(m_root, u"1"_s, u"Folder"_s, NodeImage::Folder);
        m_tree->addChild(m_folder, u"2"_s, u"Two"_s, NodeImage::Feed);
        m_inner = m_tree->addChild(m_folder, u"3"_s, u"Inner"_s, NodeImage::Folder);
        m_tree->addChild(m_inner, u"4"_s, u"Four"_s, NodeImage::Feed);
        m_tree->addChild(m_root, u"5"_s, u"Five"_s, NodeImage::Feed);
    }

    void nodesStandWhereTheyWereAdded()
    {
        QCOMPARE(shape(), u"root(1(2 3(4)) 5)"_s);
        m_tree->addBeside(m_tree->find(u"3"_s), true, u"6"_s, {}, NodeImage::Feed);
        m_tree->addBeside(m_tree->find(u"3"_s), false, u"7"_s, {}, NodeImage::Feed);
        QCOMPARE(shape(), u"root(1(2 6 3(4) 7) 5)"_s);
        QVERIFY_EXCEPTION_THROWN(m_tree->addChild(nullptr, u"8"_s, {}, NodeImage::Feed), RunTimeError);
        QVERIFY_EXCEPTION_THROWN(m_tree->addChild(m_root, u"4"_s, {}, NodeImage::Feed), RunTimeError); // a key twice
        QVERIFY_EXCEPTION_THROWN(m_tree->addBeside(m_root, true, u"8"_s, {}, NodeImage::Feed), RunTimeError);
    }

    void whatIsRemovedIsGoneWithAllBelowIt()
    {
        const FeedNodePtr four = m_tree->find(u"4"_s);
        m_tree->remove(m_root->children().front());
        QCOMPARE(shape(), u"root(5)"_s);
        for (const FeedNodePtr &node : {m_folder, m_inner, four}) {
            QCOMPARE(node->image(), NodeImage::Gone);
            QVERIFY(!node->parent());
            QVERIFY(node->children().empty());
            QVERIFY(!m_tree->find(node->key()));
            QVERIFY(!m_tree->indexOf(node).isValid());
        }
        QCOMPARE(four->text(), u"Four"_s); // still readable
        m_tree->setImages(four, NodeImage::Feed, NodeImage::Feed);
        m_tree->remove(four);
        m_tree->remove(nullptr);
        QCOMPARE(four->image(), NodeImage::Gone);
        QVERIFY_EXCEPTION_THROWN(m_tree->addChild(m_inner, u"9"_s, {}, NodeImage::Feed), RunTimeError);
        m_tree->addChild(m_root, u"4"_s, {}, NodeImage::Feed); // the key is free again
        m_tree->remove(m_root);
        QVERIFY(!m_tree->root());
        QCOMPARE(m_tree->rowCount(), 0);
    }

    void aRemovalTakesTheSelectionWithIt()
    {
        QSignalSpy spy(m_state.get(), &FeedTreeState::selectionChanged);
        m_state->select(m_tree->find(u"4"_s));
        m_tree->remove(m_tree->find(u"5"_s));
        QVERIFY(m_state->selected());
        m_tree->remove(m_folder);
        QVERIFY(!m_state->selected());
        QCOMPARE(spy.count(), 2);
        m_state->select(m_folder); // a node that is gone selects nothing
        QVERIFY(!m_state->selected());
    }

    void rowsFollowEachOtherAsTheViewShowsThem()
    {
        const auto rows = [this] {
            QStringList keys;
            for (FeedNodePtr node = m_root; node; node = m_state->next(node))
                keys.append(node->key());
            QStringList back;
            for (FeedNodePtr node = m_tree->find(keys.back()); node; node = m_state->previous(node))
                back.prepend(node->key());
            return keys == back ? keys.join(u' ') : u"the two ways differ"_s;
        };
        QCOMPARE(rows(), u"root"_s);
        m_state->setExpanded(m_root, true);
        QCOMPARE(rows(), u"root 1 5"_s);
        m_state->setExpanded(m_inner, true);
        QCOMPARE(rows(), u"root 1 5"_s);
        m_state->setExpanded(m_folder, true);
        QCOMPARE(rows(), u"root 1 2 3 4 5"_s);
        const FeedNodePtr five = m_tree->find(u"5"_s);
        m_tree->remove(five);
        QVERIFY(!m_state->next(five) && !m_state->previous(five) && !m_state->next(nullptr));
    }

private:
    QString shape(const FeedNodePtr &node) const
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
    QString shape() const { return shape(m_tree->root()); }

    std::unique_ptr<FeedTree> m_tree;
    std::unique_ptr<FeedTreeState> m_state;
    FeedNodePtr m_root;
    FeedNodePtr m_folder;
    FeedNodePtr m_inner;
};

QTEST_GUILESS_MAIN(FeedTreeTest)
#include "tst_FeedTree.moc"

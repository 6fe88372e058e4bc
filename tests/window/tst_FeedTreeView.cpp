// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/ImageList.h"
#include "platform/Literals.h"
#include "window/FeedTreeView.h"

#include <QAccessible>
#include <QContextMenuEvent>
#include <QDrag>
#include <QDropEvent>
#include <QMimeData>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

class tst_FeedTreeView : public QObject
{
    Q_OBJECT

private:
    FeedTree m_tree;
    FeedTreeState m_state{m_tree};
    ImageList m_pictures{16};
    std::unique_ptr<FeedTreeView> m_view;
    QStringList m_said;

    FeedNodePtr node(const char *key) const { return m_tree.find(QString::fromLatin1(key)); }
    QPoint placeOf(const char *key) const { return m_view->visualRect(m_tree.indexOf(node(key))).center(); }
    QModelIndexList selected() const { return m_view->selectionModel()->selectedIndexes(); }

private Q_SLOTS:
    void init()
    {
        m_tree.remove(m_tree.root());
        m_view = std::make_unique<FeedTreeView>(m_tree, m_state, m_pictures);
        const FeedNodePtr root = m_tree.addRoot(u"root"_s, u"Favoris"_s, NodeImage::Root);
        const FeedNodePtr folder = m_tree.addChild(root, u"1"_s, u"Presse"_s, NodeImage::Folder);
        m_tree.addChild(folder, u"2"_s, u"Monde"_s, NodeImage::Feed);
        m_tree.addChild(folder, u"3"_s, u"Matin"_s, NodeImage::Feed);
        m_tree.addChild(root, u"4"_s, u"Blog"_s, NodeImage::Feed);
        m_state.bringIntoView(node("2"));
        m_view->resize(300, 400);
        m_view->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_view.get()));

        m_said.clear();
        connect(m_view.get(), &FeedTreeView::nodeClicked, this,
                [this](const FeedNodePtr &n) { m_said.append(u"click "_s + n->key()); });
        connect(m_view.get(), &FeedTreeView::arrowKeyTo, this, [this](const FeedNodePtr &n) {
            m_said.append(u"arrow "_s + n->key() + u" from "_s + m_state.selected()->key());
        });
        connect(m_view.get(), &FeedTreeView::nodeRightClicked, this,
                [this](const FeedNodePtr &n) { m_said.append(u"right "_s + n->key()); });
        connect(m_view.get(), &FeedTreeView::nodeDropped, this, [this](const FeedNodePtr &n, bool above) {
            m_said.append(u"drop %1 %2"_s.arg(n ? n->key() : QString()).arg(above));
        });
    }

    void aClickSelectsBeforeItIsTold()
    {
        QString selectedThen;
        connect(m_view.get(), &FeedTreeView::nodeClicked, this, [&] { selectedThen = m_state.selected()->key(); });
        QTest::mouseClick(m_view->viewport(), Qt::LeftButton, {}, placeOf("3"));
        QCOMPARE(m_said, QStringList(u"click 3"_s));
        QCOMPARE(selectedThen, u"3"_s);
    }

    void aPressSelectsNothingUntilItIsReleased()
    {
        QTest::mousePress(m_view->viewport(), Qt::LeftButton, {}, placeOf("2"));
        QVERIFY(!m_state.selected());
        QCOMPARE(m_view->draggedNode(), node("2"));
        QTest::mouseRelease(m_view->viewport(), Qt::LeftButton, {}, placeOf("4"));
        QVERIFY(m_said.isEmpty());
        QVERIFY(selected().isEmpty());
    }

    void theArrowOfAFolderOpensItWithoutAClick()
    {
        const QRect row = m_view->visualRect(m_tree.indexOf(node("1")));
        const QPoint arrow(row.left() - m_view->indentation() / 2, row.center().y());
        QTest::mouseClick(m_view->viewport(), Qt::LeftButton, {}, arrow);
        QVERIFY(!m_state.isExpanded(node("1")));
        QVERIFY(m_said.isEmpty());
    }

    void arrowKeysTellTheNextNodeBeforeTheSelectionMoves()
    {
        m_state.select(node("3"));
        QTest::keyClick(m_view.get(), Qt::Key_Down);
        QCOMPARE(m_said, QStringList(u"arrow 4 from 3"_s));
        QCOMPARE(m_state.selected(), node("4"));
        QTest::keyClick(m_view.get(), Qt::Key_Down); // the last node has none behind it
        QCOMPARE(m_said.size(), 1);
        m_state.setExpanded(node("1"), false);
        QTest::keyClick(m_view.get(), Qt::Key_Up);
        QCOMPARE(m_said.last(), u"arrow 1 from 4"_s);
        QCOMPARE(m_state.selected(), node("1"));
    }

    void aContextMenuIsAskedForWithMouseAndKeyboardWithoutSelecting()
    {
        m_state.select(node("4"));
        const QPoint place = placeOf("2");
        QContextMenuEvent mouse(QContextMenuEvent::Mouse, place, m_view->viewport()->mapToGlobal(place));
        QCoreApplication::sendEvent(m_view->viewport(), &mouse);
        QContextMenuEvent keyboard(QContextMenuEvent::Keyboard, QPoint(), QPoint());
        QCoreApplication::sendEvent(m_view->viewport(), &keyboard);
        QCOMPARE(m_said, QStringList({u"right 2"_s, u"right 4"_s}));
        QCOMPARE(m_state.selected(), node("4"));
    }

    void aDropTellsItsTargetAndTheSide_data()
    {
        QTest::addColumn<QByteArray>("carried");
        QTest::addColumn<int>("offset");
        QTest::addColumn<QStringList>("told");
        QTest::newRow("upper half") << QByteArray("2") << -4 << QStringList(u"drop 4 1"_s);
        QTest::newRow("lower half") << QByteArray("2") << 4 << QStringList(u"drop 4 0"_s);
        QTest::newRow("no node there") << QByteArray("2") << 200 << QStringList(u"drop  0"_s);
        QTest::newRow("not the dragged node") << QByteArray("3") << 4 << QStringList();
    }

    void aDropTellsItsTargetAndTheSide()
    {
        QFETCH(QByteArray, carried);
        QFETCH(int, offset);
        m_state.select(node("3"));
        QTest::mousePress(m_view->viewport(), Qt::LeftButton, {}, placeOf("2"));
        QMimeData mime;
        mime.setData(u"application/x-quillwire-node"_s, carried);
        const QPointF place = placeOf("4") + QPoint(0, offset);
        QDragEnterEvent enter(place.toPoint(), Qt::MoveAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(m_view->viewport(), &enter);
        QDropEvent drop(place, Qt::MoveAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(m_view->viewport(), &drop);
        QTEST(m_said, "told");
        QCOMPARE(m_state.selected(), node("3")); // a drag neither clicks nor selects
    }

    void aMarkStandsOnlyWhereADropActs_data()
    {
        QTest::addColumn<QByteArray>("dragged");
        QTest::addColumn<QByteArray>("over");
        QTest::addColumn<bool>("taken");
        QTest::addColumn<bool>("marked");
        QTest::newRow("feed on a feed") << QByteArray("4") << QByteArray("3") << true << true;
        QTest::newRow("feed on a folder") << QByteArray("4") << QByteArray("1") << true << true;
        QTest::newRow("feed on the root") << QByteArray("2") << QByteArray("root") << true << true;
        QTest::newRow("feed on itself") << QByteArray("4") << QByteArray("4") << false << false;
        QTest::newRow("feed on no node") << QByteArray("4") << QByteArray() << false << false;
        QTest::newRow("folder on a feed") << QByteArray("1") << QByteArray("4") << false << false;
        QTest::newRow("feed right under the root") << QByteArray("2") << QByteArray("4") << true << false;
    }

    void aMarkStandsOnlyWhereADropActs()
    {
        QFETCH(QByteArray, dragged);
        QFETCH(QByteArray, over);
        QFETCH(bool, taken);
        QFETCH(bool, marked);
        QTest::mousePress(m_view->viewport(), Qt::LeftButton, {}, placeOf(dragged));
        const QImage before = m_view->viewport()->grab().toImage();
        QMimeData mime;
        mime.setData(u"application/x-quillwire-node"_s, dragged);
        const QPoint place = over.isEmpty() ? QPoint(50, 390) : placeOf(over);
        QDragEnterEvent enter(place, Qt::MoveAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(m_view->viewport(), &enter);
        QVERIFY(enter.isAccepted()); // or no move would be told
        QDragMoveEvent move(place, Qt::MoveAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(m_view->viewport(), &move);
        QCOMPARE(move.isAccepted(), taken);
        QCOMPARE(m_view->viewport()->grab().toImage() != before, marked);
        QDragLeaveEvent leave;
        QCoreApplication::sendEvent(m_view->viewport(), &leave);
        QCOMPARE(m_view->viewport()->grab().toImage(), before);
    }

    void aDragThatRestsAtTheEdgeScrollsToTheEnd()
    {
        m_view->resize(300, 60);
        QScrollBar *bar = m_view->verticalScrollBar();
        QTRY_VERIFY(bar->maximum() > 1);
        bar->setValue(0);
        QTest::mousePress(m_view->viewport(), Qt::LeftButton, {}, placeOf("2"));
        QMimeData mime;
        mime.setData(u"application/x-quillwire-node"_s, "2");
        const auto rest = [&](int y) {
            QDragEnterEvent enter(QPoint(60, y), Qt::MoveAction, &mime, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(m_view->viewport(), &enter);
            QDragMoveEvent move(QPoint(60, y), Qt::MoveAction, &mime, Qt::LeftButton, Qt::NoModifier);
            QCoreApplication::sendEvent(m_view->viewport(), &move);
        };
        rest(m_view->viewport()->height() - 3);
        QTRY_COMPARE(bar->value(), bar->maximum());
        rest(2);
        QTRY_COMPARE(bar->value(), 0);
        rest(m_view->viewport()->height() - 3);
        QDragLeaveEvent leave;
        QCoreApplication::sendEvent(m_view->viewport(), &leave);
        QTest::qWait(150);
        QCOMPARE(bar->value(), 0);
    }

    void thePictureOfADragLeavesTheTargetInSight()
    {
        QTest::mousePress(m_view->viewport(), Qt::LeftButton, {}, placeOf("2"));
        QTimer::singleShot(0, this, [] { QDrag::cancel(); }); // where the platform has a loop for drags
        QMouseEvent move(QEvent::MouseMove, placeOf("2") + QPointF(30, 30), QPointF(), Qt::NoButton, Qt::LeftButton,
                         Qt::NoModifier);
        QCoreApplication::sendEvent(m_view->viewport(), &move);
        const auto *drag = m_view->findChild<QDrag *>();
        QVERIFY(drag && drag->hotSpot().y() <= -m_view->visualRect(m_tree.indexOf(node("2"))).height());
    }

    void aNodeTellsItsKindAndState()
    {
        const auto told = [this](const char *key) {
            m_state.select(node(key));
            return QAccessible::queryAccessibleInterface(m_view.get())->focusChild()->text(QAccessible::Name);
        };
        QCOMPARE(told("root"), u"Favoris"_s);
        QCOMPARE(told("1"), u"Presse, dossier"_s);
        QCOMPARE(told("2"), u"Monde, flux"_s);
        m_tree.setImages(node("2"), NodeImage::FeedUpdating, NodeImage::FeedUpdating);
        QCOMPARE(told("2"), u"Monde, flux, mise à jour en cours"_s);
    }
};

QTEST_MAIN(tst_FeedTreeView)
#include "tst_FeedTreeView.moc"

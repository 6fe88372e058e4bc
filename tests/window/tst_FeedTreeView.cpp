// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/ImageList.h"
#include "platform/Literals.h"
#include "tests/fixtures/Golden.h"
#include "tests/fixtures/PaintLog.h"
#include "tests/window/WindowDump.h"

#include <QAccessible>
#include <QContextMenuEvent>
#include <QDrag>
#include <QDropEvent>
#include <QMimeData>
#include <QProxyStyle>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

/// Notes the picture that each text is drawn with.
class RecordingStyle final : public QProxyStyle
{
public:
    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget) const override
    {
        if (const auto *item = qstyleoption_cast<const QStyleOptionViewItem *>(option);
            item && element == CE_ItemViewItem)
            shown[item->text] = WindowDump::pictureOf(item->icon) + u" of %1"_s.arg(item->decorationSize.width());
        QProxyStyle::drawControl(element, option, painter, widget);
    }

    /// Leaves out the arrow of a folder.
    void drawPrimitive(PrimitiveElement, const QStyleOption *, QPainter *, const QWidget *) const override {}

    mutable QHash<QString, QString> shown;
};

class OpenTreeView final : public FeedTreeView
{
public:
    using FeedTreeView::drawBranches;
    using FeedTreeView::FeedTreeView;
};

class tst_FeedTreeView : public QObject
{
    Q_OBJECT

private:
    FeedTree m_tree;
    FeedTreeState m_state{m_tree};
    ImageList m_pictures{16};
    std::unique_ptr<OpenTreeView> m_view;
    QStringList m_said;

    FeedNodePtr node(const char *key) const { return m_tree.find(QString::fromLatin1(key)); }
    QPoint placeOf(const char *key) const { return m_view->visualRect(m_tree.indexOf(node(key))).center(); }
    QModelIndexList selected() const { return m_view->selectionModel()->selectedIndexes(); }

    /// Presses on a node and moves what is carried over a place, as a drag would, then drops it there.
    void dragAndDrop(const char *key, QPoint place, const char *carried)
    {
        QTest::mousePress(m_view->viewport(), Qt::LeftButton, {}, placeOf(key));
        const QImage before = m_view->viewport()->grab().toImage();
        QMimeData mime;
        mime.setData(u"application/x-quillwire-node"_s, carried);
        QDragEnterEvent enter(place, Qt::MoveAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(m_view->viewport(), &enter);
        QDragMoveEvent move(place, Qt::MoveAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(m_view->viewport(), &move);
        const bool marked = m_view->viewport()->grab().toImage() != before;
        QDragLeaveEvent leave;
        QCoreApplication::sendEvent(m_view->viewport(), &leave);
        QCOMPARE(m_view->viewport()->grab().toImage(), before);
        m_said += u"enters %1, is taken %2, marked %3"_s.arg(enter.isAccepted()).arg(move.isAccepted()).arg(marked);
        QCoreApplication::sendEvent(m_view->viewport(), &enter);
        QDropEvent drop(place, Qt::MoveAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(m_view->viewport(), &drop);
    }

    void menu(QContextMenuEvent::Reason reason, QPoint place) const
    {
        QContextMenuEvent event(reason, place, m_view->viewport()->mapToGlobal(place));
        QCoreApplication::sendEvent(m_view->viewport(), &event);
    }

    void noteSelected() { m_said += u"selected "_s + (m_state.selected() ? m_state.selected()->key() : u"none"_s); }

    /// What the view tells of that. A place is a node, its arrow, what is left of it, or nothing.
    QStringList done(const QStringList &words)
    {
        const auto key = [&words](int index) { return words.value(index).toUtf8(); };
        const auto place = [&](int index) {
            const QString &name = words[index];
            const QRect row = m_view->visualRect(m_tree.indexOf(m_tree.find(name.section(u':', 0, 0))));
            if (name.endsWith(u":arrow"_s))
                return QPoint(row.left() - m_view->indentation() / 2, row.center().y());
            return name == u"nothing" ? QPoint(50, 390)
                                      : QPoint(name.endsWith(u":left"_s) ? 2 : row.center().x(), row.center().y());
        };
        m_said.clear();
        if (words[0] == u"press" || words[0] == u"right-press") {
            const Qt::MouseButton button = words[0] == u"press" ? Qt::LeftButton : Qt::RightButton;
            const QPoint to = place(words.size() - 1);
            QTest::mousePress(m_view->viewport(), button, {}, place(1));
            m_said += u"carries "_s + (m_view->draggedNode() ? m_view->draggedNode()->key() : u"none"_s);
            noteSelected();
            QTest::mouseRelease(m_view->viewport(), button, {}, to);
        } else if (words[0] == u"key")
            QTest::keyClick(m_view.get(), Qt::Key(QKeySequence(words[1])[0].key()));
        else if (words[0] == u"menu")
            menu(QContextMenuEvent::Mouse, place(1));
        else if (words[0] == u"menu-key")
            menu(QContextMenuEvent::Keyboard, {});
        else if (words[0] == u"open")
            m_state.setExpanded(node(key(1)), true);
        else if (words[0] == u"select")
            m_state.select(m_tree.find(words.value(1)));
        else if (words[0] == u"remove")
            m_tree.remove(node(key(1)));
        else if (words[0] == u"drag")
            dragAndDrop(key(1), place(3) + QPoint(0, words[4].toInt()), key(6));
        noteSelected();
        if (const FeedNodePtr folder = node("1"))
            m_said += u"folder %1, shown %2"_s.arg(m_state.isExpanded(folder))
                          .arg(m_view->isExpanded(m_tree.indexOf(folder)));
        return {m_said.join(u", "_s)};
    }

private Q_SLOTS:
    void init()
    {
        m_tree.remove(m_tree.root());
        int number = 2;
        for (const QString &picture : {u"folder"_s, u"feed"_s, u"feed-updating"_s, u"root"_s})
            m_pictures.setPicture(number++, picture);
        m_view = std::make_unique<OpenTreeView>(m_tree, m_state, m_pictures);
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

    void theViewTellsWhatTheUserDid()
    {
        const QString played = playedAgain(
            u"tree.txt"_s, [] {}, [this](const QStringList &words) { return done(words); });
        QCOMPARE(differenceFromGolden(u"tree.txt"_s, played), QString());
    }

    void everyNodeHasItsPictureItsLinesAndItsName()
    {
        m_tree.setImages(node("3"), NodeImage::FeedUpdating, NodeImage::FeedUpdating);
        m_tree.setImages(node("4"), NodeImage::Feed, NodeImage::Folder);
        QPalette colours;
        colours.setColor(QPalette::Dark, Qt::red);
        m_view->setPalette(colours);
        RecordingStyle style;
        m_view->setStyle(&style);
        QStringList told;
        for (const char *key : {"root", "1", "2", "3", "4"}) {
            const QRect row = m_view->visualRect(m_tree.indexOf(node(key)));
            QStringList pictures;
            for (const bool selected : {false, true}) {
                m_state.select(selected ? node(key) : nullptr);
                m_view->viewport()->grab(row);
                pictures += style.shown.value(node(key)->text());
            }
            PaintLog log(QSize(100, 20));
            QPainter painter(&log);
            m_view->drawBranches(&painter, QRect(0, 0, row.left(), 20), m_tree.indexOf(node(key)));
            told += QAccessible::queryAccessibleInterface(m_view.get())->focusChild()->text(QAccessible::Name) +
                    u": "_s + pictures.join(u", selected "_s) + u'\n' + log.told().chopped(1);
        }
        m_view->setStyle(nullptr);
        QCOMPARE(differenceFromGolden(u"nodes.txt"_s, told.join(u'\n') + u'\n'), QString());
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
};

QTEST_MAIN(tst_FeedTreeView)
#include "tst_FeedTreeView.moc"

// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/ImageList.h"
#include "platform/Literals.h"
#include "tests/fixtures/Golden.h"
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

    mutable QHash<QString, QString> shown;
};

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

private Q_SLOTS:
    void init()
    {
        m_tree.remove(m_tree.root());
        int number = 2;
        for (const QString &picture : {u"folder"_s, u"feed"_s, u"feed-updating"_s, u"root"_s})
            m_pictures.setPicture(number++, picture);
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

    void theViewTellsWhatTheUserDid()
    {
        QStringList log;
        const auto act = [&](const QString &name, const std::function<void()> &perform) {
            m_said.clear();
            perform();
            log += name + u": "_s +
                   (m_said + QStringList{u"selected "_s + (m_state.selected() ? m_state.selected()->key() : u"none"_s)})
                       .join(u", "_s);
        };
        const auto key = [this](Qt::Key pressed) {
            return [this, pressed] { QTest::keyClick(m_view.get(), pressed); };
        };
        const auto menu = [this](QContextMenuEvent::Reason reason, QPoint place) {
            return [this, reason, place] {
                QContextMenuEvent event(reason, place, m_view->viewport()->mapToGlobal(place));
                QCoreApplication::sendEvent(m_view->viewport(), &event);
            };
        };
        const QRect folder = m_view->visualRect(m_tree.indexOf(node("1")));
        const QPoint arrow(folder.left() - m_view->indentation() / 2, folder.center().y());
        const auto click = [this](QPoint from, QPoint to, Qt::MouseButton button = Qt::LeftButton) {
            return [this, from, to, button] {
                QTest::mousePress(m_view->viewport(), button, {}, from);
                m_said += u"pressed on "_s + (m_view->draggedNode() ? m_view->draggedNode()->key() : u"none"_s) +
                          u", selected "_s + (m_state.selected() ? m_state.selected()->key() : u"none"_s);
                QTest::mouseRelease(m_view->viewport(), button, {}, to);
            };
        };
        const QPoint nowhere(50, 390);
        act(u"press on 2, release on 4"_s, click(placeOf("2"), placeOf("4")));
        act(u"click on 3"_s, click(placeOf("3"), placeOf("3")));
        act(u"right press on 2"_s, click(placeOf("2"), placeOf("2"), Qt::RightButton));
        act(u"click on nothing"_s, click(nowhere, nowhere));
        act(u"down"_s, key(Qt::Key_Down));
        act(u"down, at the end"_s, key(Qt::Key_Down));
        act(u"left"_s, key(Qt::Key_Left));
        act(u"menu on 2"_s, menu(QContextMenuEvent::Mouse, placeOf("2")));
        act(u"menu on nothing"_s, menu(QContextMenuEvent::Mouse, nowhere));
        act(u"menu beside 2"_s, menu(QContextMenuEvent::Mouse, QPoint(2, placeOf("2").y())));
        act(u"menu by the keyboard"_s, menu(QContextMenuEvent::Keyboard, {}));
        act(u"click on the arrow of 1"_s, click(arrow, arrow));
        log += m_state.isExpanded(node("1")) ? u"open"_s : u"closed"_s;
        act(u"click on 4"_s, [&] { click(placeOf("4"), placeOf("4"))(); });
        act(u"up, over what is closed"_s, key(Qt::Key_Up));
        m_state.setExpanded(node("1"), true);
        log += m_view->isExpanded(m_tree.indexOf(node("1"))) ? u"open"_s : u"closed"_s;
        for (const QByteArray drag :
             {"2 over 4 -4 as 2", "2 over 4 4 as 2", "2 over nothing 0 as 2", "2 over 4 4 as 3", "4 over 3 -4 as 4",
              "4 over 1 4 as 4", "2 over root 4 as 2", "4 over 4 4 as 4", "1 over 4 4 as 1"}) {
            const QByteArrayList words = drag.split(' ');
            const QPoint place = words[2] == "nothing" ? nowhere : placeOf(words[2]) + QPoint(0, words[3].toInt());
            act(u"drag "_s + QString::fromLatin1(drag), [&] { dragAndDrop(words[0], place, words[5]); });
        }
        m_state.select(nullptr);
        act(u"menu by the keyboard, nothing selected"_s, menu(QContextMenuEvent::Keyboard, {}));
        act(u"up, nothing selected"_s, key(Qt::Key_Up));
        m_state.select(node("2"));
        for (const char *gone : {"4", "2", "1"})
            act(u"removal of "_s + QString::fromLatin1(gone), [&] { m_tree.remove(node(gone)); });
        QCOMPARE(differenceFromGolden(u"tree.txt"_s, log.join(u'\n') + u'\n'), QString());
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
            const QImage image = m_view->viewport()->grab().toImage();
            const auto hasLine = [&image](const QRect &part) {
                for (int x = part.left(); x <= part.right(); ++x)
                    for (int y = part.top(); y <= part.bottom(); ++y)
                        if (image.pixelColor(x, y) == QColor(Qt::red))
                            return true;
                return false;
            };
            QStringList lines;
            const int middle = row.center().y();
            for (int x = row.left() - 1 - m_view->indentation() / 2; x > 0; x -= m_view->indentation())
                lines += u"%1%2%3"_s.arg(
                    hasLine(QRect(QPoint(x, row.top()), QPoint(x, middle - 1))) ? u"up"_s : QString(),
                    hasLine(QRect(QPoint(x, middle + 1), QPoint(x, row.bottom()))) ? u"down"_s : QString(),
                    hasLine(QRect(QPoint(x + 1, middle), QPoint(x + 8, middle))) ? u"right"_s : QString());
            told += QAccessible::queryAccessibleInterface(m_view.get())->focusChild()->text(QAccessible::Name) +
                    u": "_s + pictures.join(u", selected "_s) + u"; "_s + lines.join(u", then "_s);
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

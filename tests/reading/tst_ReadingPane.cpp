// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Literals.h"
#include "reading/ReadingPane.h"

#include "reading/BrowserPane.h"
#include "reading/ItemListView.h"
#include "reading/ReadingWindow.h"
#include "tests/fixtures/FakeMessages.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// Keeps what was asked of it.
class FakeWindow final : public ReadingWindow
{
public:
    void enableBrowserButton(const QString &key, bool enabled) override { buttons[key] = enabled; }
    void setAttachmentEntry(const QString &caption, const QString &key) override { attachment = {caption, key}; }
    bool updateRunning() const override { return updating; }
    void showMailDialog(const QString &text) override { asked += u"mail "_s + text.section(u'\r', 0, 0); }
    void showItemMenu(bool canMarkRead, bool canMarkUnread) override
    {
        asked += u"menu %1%2"_s.arg(canMarkRead).arg(canMarkUnread);
    }
    void showColumnMenu() override { asked += u"columns"_s; }

    QStringList asked;
    QHash<QString, bool> buttons;
    QStringList attachment;
    bool updating = false;
};

Dates inUtc()
{
    return Dates([] { return TimeZoneRecord{}; });
}

constexpr QLatin1String feedText(
    "<?xml version=\"1.0\"?><rss version=\"2.0\"><channel><title>Canal</title>"
    "<item><title>un</title><comments>http://example.org/c</comments></item>"
    "<item><title>deux</title><enclosure url=\"http://example.org/d/son.mp3\" length=\"1536\" type=\"a/b\"/></item>"
    "<item><title>trois</title></item></channel></rss>");

} // namespace

class TestReadingPane : public QObject
{
    Q_OBJECT

    struct Room
    {
        Room()
        {
            data.write(u"feeds/1.xml"_s, QByteArray(feedText.data(), feedText.size()));
            current.document->Load(data.cacheFile(u"1"_s));
            for (int column = 1; column <= itemColumnCount; ++column)
                list.setColumnWidthTwips(column, column == 2 ? 240 : 1500);
            list.resize(700, 200);
            list.show();
            pane.FillItemList();
        }

        void click(int row, int column, Qt::MouseButton button = Qt::LeftButton)
        {
            QTest::mouseClick(list.viewport(), button, {},
                              list.visualRect(list.items().index(row, column - 1)).center());
        }

        void press(Qt::Key key) { QTest::keyClick(&list, key); }

        /// The heading of the page in tmp.htm.
        QString shown() const
        {
            const QByteArray page = data.read(u"tmp.htm"_s).replace(QByteArrayView("\0", 1), QByteArrayView());
            const qsizetype begin = page.indexOf("<h1>") + 4;
            return QString::fromLatin1(page.mid(begin, page.indexOf("</h1>") - begin));
        }

        QList<bool> read() const
        {
            QList<bool> marks;
            for (qint16 i = 0; i < current.document->ItemCount(); ++i)
                marks.append(current.document->IsItemRead(i));
            return marks;
        }

        TemporaryDataDirectory data;
        FakeMessages messages;
        FakeWindow window;
        CurrentFeed current;
        AppSettings settings;
        PageWriter pages{data.directory(), current, inUtc()};
        ItemListView list{inUtc(), ScreenScale{}};
        BrowserPane browser{data.directory(), messages}; // never shown, so that no engine starts
        ReadingPane pane{pages, current, settings, list, browser, window};
    };

    std::unique_ptr<Room> m_room;

private Q_SLOTS:
    void init()
    {
        m_room = std::make_unique<Room>();
        m_room->settings.readDelay = -1;
    }
    void cleanup() { m_room.reset(); }

    void fillingShowsTheChannelUnlessAnUpdateRuns()
    {
        Room &room = *m_room;
        QCOMPARE(room.shown(), u"Canal"_s);
        QCOMPARE(room.list.items().rowCount(), 3);
        QCOMPARE(room.window.buttons.value(u"browser_attachment"_s, true), false);
        QCOMPARE(room.window.buttons.value(u"browser_comments"_s, true), false);
        room.click(1, 1);
        QCOMPARE(room.shown(), u"deux"_s);
        room.window.updating = true;
        room.pane.FillItemList();
        QCOMPARE(room.shown(), u"deux"_s);
        QCOMPARE(room.pane.selectedItem(), -1);
    }

    void aClickShowsTheItemWithItsAttachmentAndComments()
    {
        Room &room = *m_room;
        room.click(1, 1);
        QCOMPARE(room.window.buttons.value(u"browser_attachment"_s), true);
        QCOMPARE(room.window.attachment, QStringList({u"son.mp3 (2 Ko)"_s, u"1"_s}));
        QCOMPARE(room.window.buttons.value(u"browser_comments"_s), false);
        room.click(0, 1);
        QCOMPARE(room.window.buttons.value(u"browser_attachment"_s), false);
        QCOMPARE(room.window.buttons.value(u"browser_comments"_s), true);
        room.click(2, 1);
        QCOMPARE(room.window.buttons.value(u"browser_comments"_s), true); // stays on
    }

    void theReadColumnTogglesAndUnselectsWithoutChangingThePage()
    {
        Room &room = *m_room;
        room.click(0, 1);
        room.click(1, 2);
        QCOMPARE(room.read(), QList<bool>({false, true, false}));
        QCOMPARE(room.pane.selectedItem(), -1);
        QCOMPARE(room.shown(), u"un"_s);
        room.click(1, 2);
        QCOMPARE(room.read(), QList<bool>({false, false, false}));
        room.pane.MarkSelectedItem(false); // nothing is selected
        QCOMPARE(room.read(), QList<bool>({false, false, false}));
    }

    void theRightButtonAndTheMailAskTheWindow()
    {
        Room &room = *m_room;
        room.current.document->SetItemRead(1, true);
        room.click(0, 1, Qt::RightButton);
        room.click(1, 2, Qt::RightButton);
        room.pane.sendItemByMail(2);
        QTest::mouseClick(room.list.viewport(), Qt::RightButton, {}, QPoint(50, 190));
        QCOMPARE(room.window.asked, QStringList({u"menu 10"_s, u"menu 01"_s, u"mail trois"_s, u"columns"_s}));
        QCOMPARE(room.read(), QList<bool>({false, true, false}));
        QCOMPARE(room.window.buttons.value(u"send_mail"_s), true);
    }

    void deletingGoesByKeySavesAndLeavesNothingSelected()
    {
        Room &room = *m_room;
        room.list.items().sort(0, Qt::AscendingOrder); // deux, trois, un
        room.list.selectRow(1);
        room.pane.DeleteSelectedItem();
        QVERIFY(room.current.document->IsItemDeleted(2));
        QCOMPARE(room.list.items().rowCount(), 2);
        QCOMPARE(room.pane.selectedItem(), -1);
        CachedFeed saved;
        QCOMPARE(saved.Load(room.data.cacheFile(u"1"_s)), LoadOk);
        QVERIFY(saved.IsItemDeleted(2));
        room.pane.DeleteSelectedItem();
        QCOMPARE(room.list.items().rowCount(), 2);
    }

    void theDeleteKeyGoesOnToTheNextItemAndAtLastToTheChannel()
    {
        Room &room = *m_room;
        room.press(Qt::Key_Delete); // nothing is selected
        QCOMPARE(room.list.items().rowCount(), 3);
        room.list.selectRow(1);
        room.press(Qt::Key_Delete);
        QCOMPARE(room.shown(), u"trois"_s);
        QCOMPARE(room.pane.selectedItem(), 2);
        room.press(Qt::Key_Delete); // the last row: its new last takes its place
        QCOMPARE(room.shown(), u"un"_s);
        QCOMPARE(room.pane.selectedItem(), 0);
        room.press(Qt::Key_Delete);
        QCOMPARE(room.shown(), u"Canal"_s);
        QCOMPARE(room.list.items().rowCount(), 0);
    }

    void arrowKeysShowTheNeighboursAndStopAtTheEnds()
    {
        Room &room = *m_room;
        room.list.selectRow(1);
        for (const auto &[key, title] :
             {std::pair(Qt::Key_Down, u"trois"_s), std::pair(Qt::Key_Down, u"trois"_s),
              std::pair(Qt::Key_Up, u"deux"_s), std::pair(Qt::Key_Up, u"un"_s), std::pair(Qt::Key_Up, u"un"_s)}) {
            room.pane.ShowChannelPage();
            room.press(key);
            QCOMPARE(room.shown(), title);
        }
    }

    void anItemCountsAsReadAtOnceLaterOrNever()
    {
        Room &room = *m_room;
        room.click(0, 1);
        QTest::qWait(20);
        QCOMPARE(room.read(), QList<bool>({false, false, false}));
        room.settings.readDelay = 0;
        room.click(1, 1);
        QCOMPARE(room.read(), QList<bool>({false, true, false}));
        QVERIFY(room.list.items().isShownRead(1));

        room.settings.readDelay = 50;
        room.click(0, 1);
        room.pane.MarkSelectedItem(false);
        room.click(1, 1); // read already: the timer goes on and marks the row that is selected then
        room.pane.MarkSelectedItem(true);
        QTRY_COMPARE(room.read(), QList<bool>({true, true, false}));
        room.click(2, 1);
        room.list.selectRow(-1);
        QTest::qWait(100);
        QCOMPARE(room.read(), QList<bool>({true, true, false}));
    }
};

QTEST_MAIN(TestReadingPane)
#include "tst_ReadingPane.moc"

// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/ImageList.h"
#include "engine/Dates.h"
#include "platform/DateText.h"
#include "platform/RunTimeError.h"
#include "reading/BrowserPane.h"
#include "reading/ItemListView.h"
#include "reading/ReadingPane.h"
#include "reading/ReadingWindow.h"
#include "tests/fixtures/Eventually.h"
#include "tests/fixtures/FakeMessages.h"
#include "tests/fixtures/Steps.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QAbstractItemModelTester>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QStyledItemDelegate>
#include <QTest>

namespace {

const Dates &inUtc()
{
    static const Dates dates([] { return TimeZoneRecord{}; });
    return dates;
}

/// The item list and what is around it, over the items of a feed.
class Room final : public ReadingWindow
{
public:
    explicit Room(const QString &feed)
    {
        data.write(u"feeds/1.xml"_s, Files::read(u"" TEST_DATA_DIR "/"_s + feed).bytes);
        current.document->Load(data.cacheFile(u"1"_s));
        for (int column = 1; column <= itemColumnCount; ++column)
            list.setColumnWidthTwips(column, column == 2 ? 240 : 1500);
        list.resize(700, 200);
        list.show();
        settings.readDelay = -1;
        connectSignals();
        pane.FillItemList();
    }

    void enableBrowserButton(const QString &key, bool enabled) override
    {
        events += (enabled ? u"+"_s : u"-"_s) + key.section(u'_', 1);
    }
    void setAttachmentEntry(const QString &caption, const QString &key) override
    {
        events += caption + u" of "_s + key;
    }
    bool updateRunning() const override { return updating; }
    void showMailDialog(const QString &text) override { events += u"mail "_s + text.section(u'\r', 0, 0); }
    void showItemMenu(bool read, bool unread) override { events += u"menu %1%2"_s.arg(read).arg(unread); }
    void showColumnMenu() override { events += u"columns"_s; }

    QString take(const QString &step)
    {
        const QStringList words = step.split(u' ');
        const auto number = [&words](int at) { return words.value(at).toInt(); };
        const auto place = [&](int at) {
            return list.visualRect(list.items().index(number(at), number(at + 1) - 1)).center();
        };
        QWidget *const port = list.viewport();
        const QString verb = words[0];
        if (verb == u"click"_s)
            QTest::mouseClick(port, Qt::LeftButton, {}, place(1));
        else if (verb == u"right"_s)
            QTest::mouseClick(port, Qt::RightButton, {}, place(1));
        else if (verb == u"ctrl"_s)
            QTest::mouseClick(port, Qt::LeftButton, Qt::ControlModifier, place(1));
        else if (verb == u"double"_s)
            QTest::mouseDClick(port, Qt::LeftButton, {}, place(1));
        else if (verb == u"pull"_s) // over other rows, with the button down
            QTest::mousePress(port, Qt::LeftButton, {}, place(1)), QTest::mouseMove(port, place(3)),
                QTest::mouseRelease(port, Qt::LeftButton, {}, place(3));
        else if (verb == u"beside"_s)
            QTest::mouseClick(port, words.contains(u"right"_s) ? Qt::RightButton : Qt::LeftButton, {}, QPoint(50, 190));
        else if (verb == u"key"_s)
            QTest::keyClick(&list, QKeySequence(words[1])[0].key());
        else if (verb == u"menu"_s)
            askForMenu(words[1] == u"header"_s);
        else if (verb == u"header"_s)
            QTest::mouseClick(list.header()->viewport(), Qt::LeftButton, {},
                              {list.header()->sectionViewportPosition(number(1) - 1) + 4, list.header()->height() / 2});
        else if (verb == u"next-order"_s)
            events += QString::number(list.NextSortOrder(number(1)));
        else if (verb == u"select"_s)
            list.selectRow(number(1));
        else if (verb == u"mark"_s)
            pane.MarkSelectedItem(words[1] == u"unread"_s);
        else if (verb == u"delete"_s)
            pane.DeleteSelectedItem();
        else if (verb == u"mail"_s)
            pane.sendItemByMail(static_cast<qint16>(number(1)));
        else if (verb == u"fill"_s)
            updating = words.contains(u"updating"_s), pane.FillItemList();
        else if (verb == u"channel"_s)
            pane.ShowChannelPage();
        else if (verb == u"delay"_s)
            settings.readDelay = number(1);
        else if (verb == u"wait"_s) // for the item on show to count as read
            (void)eventually([this, before = marks()] { return marks() != before; }, 3000);
        else if (verb == u"wide"_s)
            list.setColumnWidthTwips(number(1), words[2].toDouble());
        else
            events += u"NO SUCH STEP"_s;
        return changes();
    }

    QString changes()
    {
        const QMap<QString, QString> now = state();
        QStringList told = std::exchange(events, {});
        for (auto entry = now.cbegin(); entry != now.cend(); ++entry)
            if (entry.value() != before.value(entry.key()))
                told += entry.key() + u' ' + entry.value();
        before = now;
        return told.join(u"; "_s);
    }

private:
    void connectSignals()
    {
        connect(&ItemListView::clickedWithSelection, u"selected"_s);
        QObject::connect(&list, &ItemListView::rowClicked, &list, [this](int row, int column, Qt::MouseButton button) {
            events += u"row %1,%2 by %3"_s.arg(row).arg(column).arg(int(button));
        });
        connect(&ItemListView::deletePressed, u"delete"_s);
        connect(&ItemListView::upPressed, u"up"_s);
        connect(&ItemListView::downPressed, u"down"_s);
    }
    template <class Signal>
    void connect(Signal signal, const QString &name)
    {
        QObject::connect(&list, signal, &list, [this, name] { events += name; });
    }

    void askForMenu(bool onHeader)
    {
        const QPoint place(5, 5);
        QContextMenuEvent event(onHeader ? QContextMenuEvent::Mouse : QContextMenuEvent::Keyboard, place, place);
        QCoreApplication::sendEvent(onHeader ? list.header()->viewport() : list.viewport(), &event);
    }

    /// Of each item "." or "r" for read or "x" for deleted.
    QString marks() const
    {
        QString all;
        for (qint16 i = 0; i < current.document->ItemCount(); ++i)
            all += current.document->IsItemDeleted(i) ? u'x' : current.document->IsItemRead(i) ? u'r' : u'.';
        return all;
    }

    QMap<QString, QString> state()
    {
        QStringList rows, widths;
        for (int row = 0; row < list.items().rowCount(); ++row)
            rows += QString::number(list.items().key(row)) + (list.items().isShownRead(row) ? u"r"_s : QString()) +
                    (row == list.selectedRow() ? u"<"_s : QString());
        QString arrows;
        for (int column = 0; column < itemColumnCount; ++column) {
            widths +=
                QString::number(list.columnWidthTwips(column + 1)) + (list.isColumnHidden(column) ? u"-"_s : QString());
            const QVariant icon = list.items().headerData(column, Qt::Horizontal, Qt::DecorationRole);
            for (const int picture : {8, 9})
                if (icon.value<QIcon>().cacheKey() == ImageLists::vbalImageList1().icon(picture).cacheKey() &&
                    icon.isValid())
                    arrows += u"%1:%2 "_s.arg(column + 1).arg(picture);
        }
        const QByteArray page = data.read(u"tmp.htm"_s).replace(QByteArrayView("\0", 1), QByteArrayView());
        CachedFeed saved;
        saved.Load(data.cacheFile(u"1"_s));
        QString kept;
        for (qint16 i = 0; i < saved.ItemCount(); ++i)
            kept += saved.IsItemDeleted(i) ? u'x' : u'.';
        return {{u"rows"_s, rows.join(u' ')},
                {u"arrows"_s, arrows},
                {u"widths"_s, widths.join(u' ')},
                {u"marks"_s, marks()},
                {u"saved"_s, kept},
                {u"item"_s, QString::number(pane.selectedItem())},
                {u"page"_s, QString::fromLatin1(page.mid(page.indexOf("<h1>") + 4).split('<')[0])}};
    }

    QStringList events;
    QMap<QString, QString> before;
    bool updating = false;
    TemporaryDataDirectory data;
    FakeMessages messages;
    CurrentFeed current;
    AppSettings settings;
    PageWriter pages{data.directory(), current, inUtc()};
    ItemListView list{inUtc(), ScreenScale{}};
    QAbstractItemModelTester tester{&list.items(), QAbstractItemModelTester::FailureReportingMode::QtTest};
    BrowserPane browser{data.directory(), messages}; // never shown, so that no engine starts
    ReadingPane pane{pages, current, settings, list, browser, *this};
};

} // namespace

class tst_ItemSteps : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyStepHasItsEffects()
    {
        std::unique_ptr<Room> room;
        const Steps steps{[&room](const Steps::Given &given) {
                              room = std::make_unique<Room>(given.value(u"feed"_s, u"items.xml"_s));
                              return room->changes();
                          },
                          [&room](const QString &step) { return room->take(step); }};
        QCOMPARE(steps.differenceFrom(u"items.txt"_s), QString());
    }

    void theModelTellsAllOfEachRow()
    {
        CachedFeed feed;
        QCOMPARE(feed.Load(u"" TEST_DATA_DIR "/items.xml"_s), LoadOk);
        feed.DeleteItem(2);
        ItemListModel model{inUtc()};
        model.fill(feed);
        model.setRead(1, true); // the text of the column stays
        QString told;
        for (int column = 0; column < itemColumnCount; ++column) {
            for (const auto role : {Qt::DisplayRole, Qt::ToolTipRole, Qt::AccessibleTextRole})
                told += model.headerData(column, Qt::Horizontal, role).toString() + u'|';
            told += u'\n';
            for (int row = 0; row < model.rowCount(); ++row) {
                const QModelIndex cell = model.index(row, column);
                const auto font = cell.data(Qt::FontRole).value<QFont>();
                const auto icon = cell.data(Qt::DecorationRole);
                const QString text = cell.data().toString();
                const bool isOfNow = column == int(ItemColumn::DownloadDate); // when the file was written
                QStringList parts = {isOfNow && DateText::isDate(text) ? u"a date"_s : text,
                                     cell.data(Qt::ToolTipRole).toString(),
                                     cell.data(Qt::AccessibleTextRole).toString(),
                                     cell.data(ItemListModel::ReadRole).toString(),
                                     font.families().value(0),
                                     QString::number(font.pointSize()),
                                     font.bold() ? u"bold"_s : QString()};
                for (const int picture : {6, 7})
                    if (icon.value<QIcon>().cacheKey() == ImageLists::vbalImageList1().icon(picture).cacheKey())
                        parts += u"picture %1"_s.arg(picture);
                told += u"  "_s + parts.join(u'|') + u'\n';
            }
        }
        QCOMPARE(differenceFromGolden(u"model.txt"_s, told), QString());
        QVERIFY(!model.index(0, 0).data(Qt::DecorationRole).isValid() && model.key(-1) == -1 && model.key(99) == -1);
    }

    void aDateThatCantBeTakenStopsTheFillWithNoRows()
    {
        CachedFeed feed;
        QCOMPARE(feed.Load(u"" TEST_DATA_DIR "/bad-date.xml"_s), LoadOk);
        ItemListModel model{inUtc()};
        QVERIFY_THROWS_EXCEPTION(RunTimeError, model.fill(feed));
        QCOMPARE(model.rowCount(), 0);
    }

    void cellsShowHostileTextsOnOneShortLine()
    {
        const ItemListView list(inUtc(), ScreenScale{});
        const QString shown =
            qobject_cast<QStyledItemDelegate *>(list.itemDelegate())
                ->displayText(QString(u"deux\nlignes\u2028\t"_s + QString(100000, u'x')), QLocale::c());
        QCOMPARE(shown, u"deux lignes  "_s + QString(987, u'x'));
    }

    void theEnvelopeIsSeenOnEveryRow_data()
    {
        QTest::addColumn<bool>("read");
        QTest::addColumn<bool>("selected");
        QTest::addColumn<QColor>("base");
        QTest::addColumn<QColor>("highlight");
        const auto row = [](const char *name, const QColor &base, const QColor &highlight) {
            for (const bool read : {false, true})
                for (const bool selected : {false, true})
                    QTest::addRow("%s, %s%s", name, read ? "read" : "unread", selected ? ", selected" : "")
                        << read << selected << base << highlight;
        };
        row("light", Qt::white, QColor(0x308CC6));
        row("dark", QColor(0x202020), QColor(0x306EB4));
        row("grey selection", Qt::white, QColor(0x7B8794));
    }

    void theEnvelopeIsSeenOnEveryRow()
    {
        QFETCH(bool, read);
        QFETCH(bool, selected);
        QFETCH(QColor, base);
        QFETCH(QColor, highlight);
        CachedFeed feed;
        QCOMPARE(feed.Load(u"" TEST_DATA_DIR "/items.xml"_s), LoadOk);
        ItemListView view(inUtc(), ScreenScale{1.0, 1.0});
        view.items().fill(feed);
        view.items().setRead(0, read);
        QPalette palette;
        palette.setColor(QPalette::Base, base);
        palette.setColor(QPalette::Highlight, highlight);
        palette.setColor(QPalette::HighlightedText, Qt::white);
        view.setPalette(palette);
        view.resize(600, 200);
        if (selected)
            view.selectRow(0);
        const QRect cell = view.visualRect(view.items().index(0, 1));
        const QImage picture = view.viewport()->grab(cell).toImage();
        const int paper = qGray(picture.pixel(1, 1));
        int farthest = 0;
        for (int x = 0; x < picture.width(); ++x)
            for (int y = 0; y < picture.height(); ++y)
                farthest = std::max(farthest, std::abs(qGray(picture.pixel(x, y)) - paper));
        QVERIFY2(farthest > 60, QByteArray::number(farthest));
    }
};

QTEST_MAIN(tst_ItemSteps)
#include "tst_ItemSteps.moc"

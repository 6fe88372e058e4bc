// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/Literals.h"
#include "reading/ItemListView.h"

#include "platform/RunTimeError.h"
#include "tests/fixtures/TemporaryDataDirectory.h"

#include <QAbstractItemModelTester>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QSignalSpy>
#include <QStyledItemDelegate>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

TimeZoneRecord utc()
{
    return {};
}

struct Item
{
    QString title;
    QString date;
    QString author = {};
};

} // namespace

class TestItemList : public QObject
{
    Q_OBJECT

    TemporaryDataDirectory m_data;
    CachedFeed m_feed;

    void loadFeed(const QList<Item> &items)
    {
        QString text = u"<?xml version=\"1.0\" encoding=\"UTF-8\"?><rss version=\"2.0\"><channel><title>t</title>"_s;
        for (const Item &item : items) {
            text += u"<item><title>" % item.title % u"</title><author>" % item.author % u"</author><pubDate>" %
                    item.date % u"</pubDate><category>c</category></item>";
        }
        m_data.write(u"feed.xml"_s, (text % u"</channel></rss>").toUtf8());
        QCOMPARE(m_feed.Load(m_data.file(u"feed.xml"_s)), LoadOk);
    }

    void loadFeed() { loadFeed({{u"un"_s, {}}, {u"deux"_s, {}}, {u"trois"_s, {}}}); }

    static QStringList column(const ItemListModel &model, ItemColumn place)
    {
        QStringList texts;
        for (int row = 0; row < model.rowCount(); ++row)
            texts.append(model.data(model.index(row, static_cast<int>(place)), Qt::DisplayRole).toString());
        return texts;
    }

    /// A view on the loaded feed with a pixel for each twip, wide enough for all columns.
    std::unique_ptr<ItemListView> view()
    {
        auto list = std::make_unique<ItemListView>(Dates(utc), ScreenScale{1.0, 1.0});
        for (int place = 1; place <= itemColumnCount; ++place)
            list->setColumnWidthTwips(place, place == 2 ? 16 : 100);
        list->resize(700, 200);
        list->show();
        list->items().fill(m_feed);
        return list;
    }

    static QPoint placeOf(ItemListView &list, int row, int columnFrom1)
    {
        return list.visualRect(list.items().index(row, columnFrom1 - 1)).center();
    }

    static void click(ItemListView &list, QPoint place, Qt::MouseButton button = Qt::LeftButton,
                      Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mouseClick(list.viewport(), button, modifiers, place);
    }

private Q_SLOTS:
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
        loadFeed();
        ItemListView view(Dates(utc), ScreenScale{1.0, 1.0});
        view.items().fill(m_feed);
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

    void rowsFollowTheDocumentWithoutItsDeletedItems()
    {
        loadFeed({{u"un"_s, u"2004-07-01T12:00:00Z"_s, u"Zoé"_s}, {u"deux"_s, {}}, {u"trois"_s, {}}});
        m_feed.DeleteItem(1);
        m_feed.SetItemRead(2, true);
        ItemListModel model{Dates(utc)};
        const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.fill(m_feed);
        QCOMPARE(column(model, ItemColumn::Title), QStringList({u"un"_s, u"trois"_s}));
        QCOMPARE(column(model, ItemColumn::PubDate),
                 QStringList({u"01/07/2004 12:00:00"_s, u"30/11/1999 00:00:00"_s})); // no date isn't an empty cell
        QCOMPARE(model.key(1), qint16(2));
        model.setRead(0, true);
        QVERIFY(!model.data(model.index(0, 0), Qt::FontRole).value<QFont>().bold() && model.isShownRead(0));
        QCOMPARE(column(model, ItemColumn::Read), QStringList({u"u"_s, u"r"_s})); // the text stays
        model.sort(0, Qt::DescendingOrder);
        model.removeRow(0);
        QCOMPARE(model.rowCount(), 1);
    }

    void aDateThatCantBeTakenStopsTheFillWithNoRows()
    {
        loadFeed({{u"un"_s, u"2004-07-01T12:00:00Z"_s}, {u"deux"_s, u"2004-07-01T"_s}});
        ItemListModel model{Dates(utc)};
        QVERIFY_THROWS_EXCEPTION(RunTimeError, model.fill(m_feed));
        QCOMPARE(model.rowCount(), 0);
    }

    void columnsSortByTextOrByDateAndKeepEqualRowsInPlace_data()
    {
        QTest::addColumn<ItemColumn>("by");
        QTest::addColumn<Qt::SortOrder>("order");
        QTest::addColumn<QStringList>("titles");
        const QString a = u"été"_s, b = u"Zone"_s, c = u"ete"_s, d = u"eux"_s;
        QTest::newRow("text") << ItemColumn::Title << Qt::AscendingOrder << QStringList({c, a, d, b});
        // As dates: the texts would put 01/02/2005 before 30/06/2004.
        QTest::newRow("date") << ItemColumn::PubDate << Qt::AscendingOrder << QStringList({d, b, a, c});
        QTest::newRow("equal") << ItemColumn::Category << Qt::DescendingOrder << QStringList({a, b, c, d});
        QTest::newRow("read") << ItemColumn::Read << Qt::AscendingOrder << QStringList({b, a, c, d});
    }

    void columnsSortByTextOrByDateAndKeepEqualRowsInPlace()
    {
        QFETCH(ItemColumn, by);
        QFETCH(Qt::SortOrder, order);
        QFETCH(QStringList, titles);
        loadFeed({{u"été"_s, u"2005-02-01T12:00:00Z"_s},
                  {u"Zone"_s, u"2004-06-30T12:00:00Z"_s},
                  {u"ete"_s, u"2005-02-01T12:00:00Z"_s},
                  {u"eux"_s, {}}});
        m_feed.SetItemRead(1, true);
        ItemListModel model{Dates(utc)};
        const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::QtTest);
        model.fill(m_feed);
        const QPersistentModelIndex followed = model.index(1, 0);
        model.sort(static_cast<int>(by), order);
        QCOMPARE(column(model, ItemColumn::Title), titles);
        QCOMPARE(followed.data().toString(), u"Zone"_s);
        QCOMPARE(model.key(followed.row()), qint16(1));
    }

    void headerClicksStepEachColumnsOwnOrder()
    {
        loadFeed();
        const auto list = view();
        list->selectRow(1);
        const auto clickHeader = [&](int place) {
            const int x = list->header()->sectionViewportPosition(place - 1) + 30;
            QTest::mouseClick(list->header()->viewport(), Qt::LeftButton, {}, QPoint(x, list->header()->height() / 2));
            return column(list->items(), ItemColumn::Title);
        };
        const auto hasArrow = [&](int place) {
            return list->items().headerData(place - 1, Qt::Horizontal, Qt::DecorationRole).isValid();
        };
        const QStringList up = {u"deux"_s, u"trois"_s, u"un"_s};
        const QStringList down = {u"un"_s, u"trois"_s, u"deux"_s};
        QCOMPARE(clickHeader(1), up);
        QCOMPARE(list->selectedRow(), 0); // the selection follows its row
        QCOMPARE(clickHeader(1), down);
        QCOMPARE(clickHeader(1), up);
        clickHeader(5);
        QVERIFY(hasArrow(5) && !hasArrow(1));
        QCOMPARE(clickHeader(1), down); // the column goes on from its own order
        QVERIFY(hasArrow(1) && !hasArrow(5));
        list->items().fill(m_feed);
        QCOMPARE(column(list->items(), ItemColumn::Title), QStringList({u"un"_s, u"deux"_s, u"trois"_s}));
        QVERIFY(hasArrow(1));
        QCOMPARE(list->NextSortOrder(1), 1);
    }

    void clicksTellRowColumnAndButton()
    {
        loadFeed();
        const auto list = view();
        QSignalSpy rows(list.get(), &ItemListView::rowClicked);
        QSignalSpy selected(list.get(), &ItemListView::clickedWithSelection);
        QSignalSpy outside(list.get(), &ItemListView::rightClickedWithoutSelection);
        const QPoint empty(50, 150);
        click(*list, placeOf(*list, 1, 2), Qt::LeftButton, Qt::ControlModifier);
        QCOMPARE(rows.takeLast(), QVariantList({1, 2, QVariant::fromValue(Qt::LeftButton)}));
        click(*list, placeOf(*list, 0, 6), Qt::RightButton);
        QCOMPARE(rows.takeLast(), QVariantList({0, 6, QVariant::fromValue(Qt::RightButton)}));
        QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, placeOf(*list, 1, 1));
        QCOMPARE(rows.size(), 1); // the second click of two counts as well as the first
        QCOMPARE(selected.size(), 3);
        click(*list, empty);
        QCOMPARE(list->selectedRow(), -1);
        click(*list, empty, Qt::RightButton);
        QCOMPARE(outside.size(), 1);
        QCOMPARE(selected.size(), 3);
    }

    void theMenuKeyAndTheHeaderReachTheMenus()
    {
        loadFeed();
        const auto list = view();
        QSignalSpy rows(list.get(), &ItemListView::rowClicked);
        QSignalSpy outside(list.get(), &ItemListView::rightClickedWithoutSelection);
        const auto ask = [&list] {
            QContextMenuEvent key(QContextMenuEvent::Keyboard, QPoint(5, 5), QPoint(5, 5));
            QCoreApplication::sendEvent(list->viewport(), &key);
            QContextMenuEvent onHeader(QContextMenuEvent::Mouse, QPoint(5, 5), QPoint(5, 5));
            QCoreApplication::sendEvent(list->header()->viewport(), &onHeader);
        };
        ask();
        QCOMPARE(outside.size(), 2);
        list->selectRow(1);
        ask();
        QCOMPARE(outside.size(), 2);
        QCOMPARE(rows.first(), QVariantList({1, 1, QVariant::fromValue(Qt::RightButton)}));
    }

    void cellsShowHostileTextsOnOneShortLine()
    {
        loadFeed({{u"deux\nlignes\u2028"_s + QString(100000, u'x'), {}}});
        const auto list = view();
        const QString shown = qobject_cast<QStyledItemDelegate *>(list->itemDelegate())
                                  ->displayText(list->items().index(0, 0).data(), QLocale::c());
        QVERIFY(shown.startsWith(u"deux lignes "_s));
        QVERIFY(shown.size() < 2000);
        QCOMPARE(list->items().index(0, 0).data().toString().size(), 100012);
        QCOMPARE(list->visualRect(list->items().index(0, 0)).height(), list->sizeHintForRow(0));
    }

    void columnWidthsAreTwipsAndZeroHides()
    {
        ItemListView list(Dates(utc), ScreenScale{15.0, 15.0});
        list.setColumnWidthTwips(1, 252 * 15);
        QCOMPARE(list.columnWidth(0), 252);
        QCOMPARE(list.columnWidthTwips(1), 3780.0);
        list.setColumnWidthTwips(1, 0);
        QVERIFY(list.isColumnHidden(0));
        QCOMPARE(list.columnWidthTwips(1), 0.0);
        list.setColumnWidthTwips(1, 16 * 15);
        QCOMPARE(list.columnWidthTwips(1), 240.0);
        list.setColumnWidthTwips(1, 1e30);
        QVERIFY(list.columnWidth(0) > 1000);
        list.setColumnWidthTwips(1, -5);
        QCOMPARE(list.columnWidthTwips(1), 0.0);
    }
};

QTEST_MAIN(TestItemList)
#include "tst_ItemList.moc"

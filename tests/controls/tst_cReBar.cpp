// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/BandLayout.h"
#include "controls/Twips.h"
#include "controls/cReBar.h"
#include "controls/cToolbar.h"
#include "platform/Literals.h"

#include <QApplication>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

namespace {

class Box final : public QWidget
{
public:
    using QWidget::QWidget;
    QSize sizeHint() const override { return {200, 20}; }
    QSize minimumSizeHint() const override { return {100, 20}; }
};

/// A rebar as the main window has it: one band on the first row, two on the second.
struct Fixture
{
    explicit Fixture(int width = 800)
    {
        window.resize(width, 300);
        rebar.AddBand(menu, QString(), true, false, u"MenuBar"_s);
        rebar.AddBand(tools, QString(), true, false, u"ToolBar"_s);
        rebar.AddBand(address, QString(), false, false, u"StyleBar"_s);
        rebar.setBandMinimumSize(0, -1, 24);
        rebar.setBandMinimumSize(1, -1, 40);
        rebar.resize(width, rebar.rebarHeight());
        rebar.RebarSize();
        window.show();
    }

    std::vector<BandLayout::Band> bands() const { return *BandLayout::fromText(rebar.saveLayout()); }
    QStringList order() const
    {
        QStringList names;
        for (const BandLayout::Band &band : bands())
            names.append(band.data);
        return names;
    }
    QRect rectOf(const QString &data) const
    {
        for (const BandLayout::Band &band : bands()) {
            if (band.data == data)
                return band.rect;
        }
        return {};
    }
    QPoint gripperOf(const QString &data) const { return rectOf(data).topLeft() + QPoint(4, 8); }
    void drag(const QPoint &from, const QPoint &to)
    {
        QTest::mousePress(&rebar, Qt::LeftButton, {}, from);
        // A mouse that is moved passes through the places between.
        for (int i = 1; i <= 4; ++i)
            QTest::mouseMove(&rebar, from + (to - from) * i / 4);
        QTest::mouseRelease(&rebar, Qt::LeftButton, {}, to);
    }

    QWidget window;
    QWidget *menu = new Box(&window);
    QWidget *tools = new Box(&window);
    QWidget *address = new Box(&window);
    cReBar rebar{&window};
};

const QString kept = u"<Bands count=\"3\" rowCount=\"2\">"
                     "<Band id=\"1\" data=\"MenuBar\" left=\"2\" top=\"0\" right=\"808\" bottom=\"21\" "
                     "bandChildMinWidth=\"193\" bandChildIdealWidth=\"193\" chevron=\"n\" text=\"\" fixedBand=\"n\"/>"
                     "<Band id=\"2\" data=\"ToolBar\" left=\"2\" top=\"23\" right=\"202\" bottom=\"56\" "
                     "bandChildMinWidth=\"94\" bandChildIdealWidth=\"94\" chevron=\"y\" text=\"\" fixedBand=\"n\"/>"
                     "<Band id=\"3\" data=\"StyleBar\" left=\"206\" top=\"23\" right=\"808\" bottom=\"56\" "
                     "bandChildMinWidth=\"313\" bandChildIdealWidth=\"313\" chevron=\"n\" text=\"\" fixedBand=\"n\"/>"
                     "</Bands>"_s;

QString with(const QString &before, const QString &after)
{
    QString text = kept;
    Q_ASSERT(text.contains(before));
    return text.replace(before, after);
}

} // namespace

class tst_cReBar : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bandsFillTheirRowsAtEveryWidth()
    {
        Fixture f;
        for (const int width : {1600, 800, 640, 200, 60, 1}) {
            f.rebar.resize(width, f.rebar.height());
            const QRect first = f.rectOf(u"MenuBar"_s);
            const QRect tools = f.rectOf(u"ToolBar"_s);
            const QRect address = f.rectOf(u"StyleBar"_s);
            QVERIFY(tools.top() == address.top() && first.bottom() < tools.top());
            QCOMPARE(QSize(first.height(), tools.height()), QSize(24, 40));
            if (width < 60)
                continue;
            QVERIFY(tools.right() < address.left());
            QCOMPARE(first.left() + first.width(), width);
            QCOMPARE(address.left() + address.width(), width);
        }
    }

    void theHeightIsToldWhenItChangesAndOnlyThen()
    {
        Fixture f;
        QSignalSpy heights(&f.rebar, &cReBar::HeightChanged);
        const int before = f.rebar.rebarHeight();
        f.rebar.resize(700, f.rebar.height());
        QCOMPARE(heights.size(), 0);
        f.rebar.setBandMinimumSize(1, -1, 22);
        f.rebar.setBandMinimumSize(99, 5, 5);
        QCOMPARE(heights, QList<QVariantList>({{before - 18}}));
    }

    void aLayoutComesBackAsItWasKept()
    {
        Fixture f(806);
        QVERIFY(f.rebar.restoreLayout(kept));
        QCOMPARE(f.rectOf(u"ToolBar"_s).width(), 200);
        const QString saved = f.rebar.saveLayout();
        QVERIFY(saved.startsWith(u"<Bands count=\"3\" rowCount=\"2\"><Band id=\"1\" data=\"MenuBar\" "_s));
        QVERIFY(!saved.contains(u'\n') && !saved.contains(u"> <"_s));

        f.drag(f.gripperOf(u"StyleBar"_s), QPoint(300, f.rebar.height() + 20));
        const QString moved = f.rebar.saveLayout();
        QVERIFY(moved.contains(u"rowCount=\"3\""_s));
        Fixture other(806);
        QVERIFY(other.rebar.restoreLayout(moved));
        QCOMPARE(other.rebar.saveLayout(), moved);
    }

    void aTextThatIsNoSuchLayoutChangesNothing_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << QString();
        QTest::newRow("other element") << with(u"<Bands "_s, u"<Bonds "_s);
        QTest::newRow("unknown band") << with(u"StyleBar"_s, u"OtherBar"_s);
        QTest::newRow("band twice") << with(u"StyleBar"_s, u"ToolBar"_s);
        QTest::newRow("no name") << with(u"data=\"ToolBar\""_s, QString());
        QTest::newRow("no number") << with(u"right=\"202\""_s, u"right=\"wide\""_s);
        QTest::newRow("band missing") << with(kept.mid(kept.indexOf(u"<Band id=\"3\""), 60), u"<Other "_s);
        QTest::newRow("something behind") << kept + u"<Bands/>"_s;
        for (qsizetype length = 1; length < kept.size(); length += 7)
            QTest::addRow("cut after %d", int(length)) << kept.left(length);
    }

    void aTextThatIsNoSuchLayoutChangesNothing()
    {
        QFETCH(QString, text);
        Fixture f;
        const QString before = f.rebar.saveLayout();
        QVERIFY(!f.rebar.restoreLayout(text));
        QCOMPARE(f.rebar.saveLayout(), before);
    }

    void numbersOutOfRangeAreBroughtIntoIt()
    {
        Fixture f;
        QString text = with(u"right=\"202\""_s, u"right=\"999999999999999999999\""_s);
        text.replace(u"top=\"0\""_s, u"top=\"-50\""_s);
        text.replace(u"bandChildMinWidth=\"94\""_s, u"bandChildMinWidth=\"2147483648\""_s);
        QVERIFY(f.rebar.restoreLayout(text));
        for (const BandLayout::Band &band : f.bands())
            QVERIFY(QRect(0, 0, 801, f.rebar.height() + 1).contains(band.rect));
        QVERIFY(f.rectOf(u"StyleBar"_s).width() > 60);
    }

    void aBandIsDraggedToAnotherRowAndBack()
    {
        Fixture f;
        const int rows = f.rebar.rebarHeight();
        f.drag(f.gripperOf(u"StyleBar"_s), QPoint(5, f.rebar.height() + 30));
        QVERIFY(f.rebar.rebarHeight() > rows);
        QCOMPARE(f.order().last(), u"StyleBar"_s);
        f.drag(f.gripperOf(u"StyleBar"_s), QPoint(500, 10));
        QCOMPARE(f.rectOf(u"StyleBar"_s).top(), 0);
        QVERIFY(qAbs(f.rectOf(u"StyleBar"_s).left() - 496) <= 2);
    }

    void aBandIsResizedBetweenItsNeighboursMinima()
    {
        Fixture f;
        const QPoint gripper = f.gripperOf(u"StyleBar"_s);
        f.drag(gripper, QPoint(795, gripper.y()));
        const QRect last = f.rectOf(u"StyleBar"_s);
        QVERIFY(last.width() >= 32 && last.left() + last.width() == 800);
        f.drag(f.gripperOf(u"StyleBar"_s), QPoint(-20, gripper.y()));
        QCOMPARE(f.order(), QStringList({u"MenuBar"_s, u"StyleBar"_s, u"ToolBar"_s}));
    }

    void aFixedBandStaysWhereItIs()
    {
        QWidget window;
        cReBar rebar(&window);
        rebar.AddBand(new Box(&window), QString(), true, true, u"a"_s);
        rebar.AddBand(new Box(&window), QString(), true, false, u"b"_s);
        rebar.resize(400, rebar.rebarHeight());
        const QString before = rebar.saveLayout();
        QTest::mousePress(&rebar, Qt::LeftButton, {}, QPoint(1, 5));
        QTest::mouseMove(&rebar, QPoint(1, 90));
        QTest::mouseRelease(&rebar, Qt::LeftButton, {}, QPoint(1, 90));
        QCOMPARE(rebar.saveLayout(), before);
    }

    void theLineBetweenRowsIsWholeAtEveryScale_data()
    {
        QTest::addColumn<double>("scale");
        for (const double scale : {1.0, 1.25, 1.5, 2.0})
            QTest::addRow("%g", scale) << scale;
    }

    void theLineBetweenRowsIsWholeAtEveryScale()
    {
        QFETCH(double, scale);
        Fixture f;
        for (QWidget *child : {f.menu, f.tools, f.address}) {
            child->setFixedHeight(child == f.menu ? 24 : 40); // as high as its row
            child->setAutoFillBackground(true);
        }
        f.rebar.RebarSize();
        QPixmap picture(f.rebar.size() * scale);
        picture.setDevicePixelRatio(scale);
        f.rebar.render(&picture);
        const QImage image = picture.toImage();
        int rows = 0;
        for (int y = 0; y < image.height(); ++y) {
            bool line = true;
            for (int x = 0; x < image.width() && line; ++x)
                line = image.pixel(x, y) == f.rebar.palette().color(QPalette::Mid).rgb();
            rows += line;
        }
        QVERIFY2(rows >= int(scale) && rows <= 2, qPrintable(QString::number(rows)));
    }

    void aChevronStandsWhereTheToolbarIsCut()
    {
        QWidget window;
        cReBar rebar(&window);
        auto *toolbar = new cToolbar(&window);
        for (const QString &text : {u"Actualiser"_s, u"Supprimer"_s})
            toolbar->AddButton(text, -1, text, cToolbar::AutoSize, text);
        rebar.AddBand(toolbar, QString(), true, false, u"ToolBar"_s);
        rebar.resize(400, rebar.rebarHeight());
        window.resize(400, 100);
        window.show();
        QVERIFY(rebar.saveLayout().contains(u"chevron=\"n\""_s));
        rebar.resize(toolbar->idealWidth() - 10, rebar.rebarHeight());
        QVERIFY(rebar.saveLayout().contains(u"chevron=\"y\""_s));

        QSignalSpy pushed(&rebar, &cReBar::ChevronPushed);
        auto *chevron = rebar.findChild<QToolButton *>(QString(), Qt::FindDirectChildrenOnly);
        QTest::mouseClick(chevron, Qt::LeftButton);
        QCOMPARE(pushed.size(), 1);
        QCOMPARE(rebar.BandData(pushed.at(0).at(0).toInt()), u"ToolBar"_s);
        const double perPixel = Twips::perPixelX(&rebar);
        QCOMPARE(pushed.at(0).at(1).toDouble() / perPixel, double(chevron->x()));
        QCOMPARE(pushed.at(0).at(3).toDouble() / perPixel, double(chevron->x() + chevron->width()));
        toolbar->setButtonEnabled(0, false);
        rebar.resize(400, rebar.rebarHeight());
        QVERIFY(!chevron->isVisible());
    }
};

QTEST_MAIN(tst_cReBar)
#include "tst_cReBar.moc"

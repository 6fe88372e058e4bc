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

#include <algorithm>
#include <tuple>

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
    QRect rectOf(const QString &data) const
    {
        const std::vector<BandLayout::Band> all = bands();
        return std::ranges::find(all, data, &BandLayout::Band::data)->rect;
    }
    /// Of each band its initial, its top, and its left and right edges.
    QString placed() const
    {
        QStringList places;
        for (const BandLayout::Band &band : bands()) {
            const QRect &rect = band.rect;
            places += u"%1%2:%3-%4"_s.arg(band.data.at(0)).arg(rect.top()).arg(rect.left()).arg(rect.right() + 1);
        }
        return places.join(u' ');
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
    void bandsStandWhereTheyFitAndWhereTheyAreDragged()
    {
        // The rebar's width, a band, the place to which its gripper is dragged, and where all bands stand then.
        const QPoint stay;
        const QList<std::tuple<int, QString, QPoint, QString>> rows = {
            {1600, {}, stay, u"M0:0-1600 T26:0-112 S26:114-1600"_s},
            {200, {}, stay, u"M0:0-200 T26:0-112 S26:114-200"_s},
            {60, {}, stay, u"M0:0-60 T26:0-29 S26:31-60"_s},
            {800, u"StyleBar"_s, {5, 100}, u"M0:0-800 T26:0-800 S68:0-800"_s},
            {800, u"StyleBar"_s, {500, 10}, u"M0:0-494 S0:496-800 T26:0-800"_s},
            {800, u"StyleBar"_s, {795, 40}, u"M0:0-800 T26:0-754 S26:756-800"_s},
            {800, u"StyleBar"_s, {-20, 40}, u"M0:0-800 S26:0-754 T26:756-800"_s},
            {800, u"ToolBar"_s, {400, 40}, u"M0:0-800 T26:0-112 S26:114-800"_s},
            {800, u"ToolBar"_s, {790, 40}, u"M0:0-800 S26:0-754 T26:756-800"_s},
            {800, u"ToolBar"_s, {300, 5}, u"M0:0-294 T0:296-800 S42:0-800"_s},
            {800, u"MenuBar"_s, {300, 45}, u"T0:0-112 S0:114-220 M0:222-800"_s},
            {800, u"MenuBar"_s, {5, 100}, u"T0:0-112 S0:114-800 M42:0-800"_s},
        };
        for (const auto &[width, band, to, placed] : rows) {
            Fixture f;
            f.rebar.resize(width, f.rebar.height());
            if (!band.isEmpty())
                f.drag(f.gripperOf(band), to);
            QCOMPARE(f.placed(), placed);
        }
        Fixture f;
        QSignalSpy heights(&f.rebar, &cReBar::HeightChanged);
        f.rebar.resize(700, f.rebar.height());
        QCOMPARE(heights.size(), 0);
        const int before = f.rebar.rebarHeight();
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

    void aTextThatIsNoSuchLayoutChangesNothing()
    {
        QStringList texts{
            with(u"<Bands "_s, u"<Bonds "_s),
            with(u"StyleBar"_s, u"OtherBar"_s),
            with(u"StyleBar"_s, u"ToolBar"_s), // a band twice
            with(u"data=\"ToolBar\""_s, QString()),
            with(u"right=\"202\""_s, u"right=\"wide\""_s),
            with(kept.mid(kept.indexOf(u"<Band id=\"3\""), 60), u"<Other "_s),
            kept + u"<Bands/>"_s,
        };
        for (qsizetype length = 0; length < kept.size(); length += 7)
            texts += kept.left(length);
        Fixture f;
        const QString before = f.rebar.saveLayout();
        for (const QString &text : texts) {
            QVERIFY2(!f.rebar.restoreLayout(text), qPrintable(text));
            QCOMPARE(f.rebar.saveLayout(), before);
        }
    }

    void numbersOutOfRangeAreBroughtIntoIt()
    {
        Fixture f;
        QString text = with(u"right=\"202\""_s, u"right=\"999999999999999999999\""_s);
        text.replace(u"top=\"0\""_s, u"top=\"-50\""_s);
        text.replace(u"bandChildMinWidth=\"94\""_s, u"bandChildMinWidth=\"2147483648\""_s);
        QVERIFY(f.rebar.restoreLayout(text));
        QCOMPARE(f.placed(), u"M0:0-800 T26:0-686 S26:688-800");
    }

    void aFixedBandStaysWhereItIs()
    {
        Fixture f;
        auto *fixed = new Box(&f.window);
        f.rebar.AddBand(fixed, QString(), true, true, u"Fixed"_s);
        const QString before = f.rebar.saveLayout();
        const QPoint left(f.rectOf(u"Fixed"_s).topLeft() + QPoint(1, 5));
        f.drag(left, left - QPoint(0, 90));
        QCOMPARE(f.rebar.saveLayout(), before);
    }

    void theLineBetweenRowsIsWholeAtEveryScale()
    {
        Fixture f;
        for (QWidget *child : {f.menu, f.tools, f.address}) {
            child->setFixedHeight(child == f.menu ? 24 : 40); // as high as its row
            child->setAutoFillBackground(true);
        }
        f.rebar.RebarSize();
        for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
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
    }

    void aChevronStandsWhereTheToolbarIsCut()
    {
        QWidget window;
        cReBar rebar(&window);
        auto *toolbar = new cToolbar(&window);
        for (const QString &text : {u"Actualiser"_s, u"Supprimer"_s})
            toolbar->AddButton(text, -1, text, cToolbar::AutoSize, text);
        rebar.AddBand(toolbar, QString(), true, false, u"ToolBar"_s);
        rebar.resize(toolbar->idealWidth() - 10, rebar.rebarHeight());
        window.show();
        QVERIFY(rebar.saveLayout().contains(u"chevron=\"y\""_s));
        QSignalSpy pushed(&rebar, &cReBar::ChevronPushed);
        auto *chevron = rebar.findChild<QToolButton *>(QString(), Qt::FindDirectChildrenOnly);
        QTest::mouseClick(chevron, Qt::LeftButton);
        QCOMPARE(rebar.BandData(pushed.value(0).value(0).toInt()), u"ToolBar"_s);
        const double perPixel = Twips::perPixelX(&rebar);
        QCOMPARE(pushed[0][1].toDouble() / perPixel, double(chevron->x()));
        QCOMPARE(pushed[0][3].toDouble() / perPixel, double(chevron->x() + chevron->width()));
        rebar.resize(400, rebar.rebarHeight());
        QVERIFY(!chevron->isVisible() && rebar.saveLayout().contains(u"chevron=\"n\""_s));
    }
};

QTEST_MAIN(tst_cReBar)
#include "tst_cReBar.moc"

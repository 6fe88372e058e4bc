// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/BandLayout.h"
#include "controls/Twips.h"
#include "controls/cReBar.h"
#include "controls/cToolbar.h"
#include "platform/Literals.h"
#include "tests/fixtures/Steps.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>
#include <QToolButton>

namespace {

class Box final : public QWidget
{
public:
    Box(const QString &name, QWidget *parent) : QWidget(parent) { setObjectName(name); }
    QSize sizeHint() const override { return {200, 20}; }
    QSize minimumSizeHint() const override { return {100, 20}; }
};

/// A rebar as the main window has it, one band on the first row, two on the second, and a fixed one on the third.
struct Fixture
{
    explicit Fixture(int width = 800, bool withFixed = false)
    {
        window.resize(width, 300);
        QWidgetList children{menu, tools, address};
        if (withFixed)
            children += new Box(u"Fixed"_s, &window);
        for (QWidget *child : children)
            rebar.AddBand(child, {}, child != address, child->objectName() == u"Fixed"_s, child->objectName());
        rebar.setBandMinimumSize(0, -1, 24);
        rebar.setBandMinimumSize(1, -1, 40);
        rebar.resize(width, rebar.rebarHeight());
        rebar.RebarSize();
        window.show();
        QObject::connect(&rebar, &cReBar::HeightChanged, [this](int height) { heights += QString::number(height); });
    }

    std::vector<BandLayout::Band> bands() const { return *BandLayout::fromText(rebar.saveLayout()); }

    /// Of each band its initial, its top, its edges, and its child's: "M0:0-800[10-800]", with ">" where it has a
    /// chevron.
    QString placed() const
    {
        QStringList places;
        for (const BandLayout::Band &band : bands()) {
            const QRect child = rebar.findChild<QWidget *>(band.data)->geometry();
            places += u"%1%2:%3-%4[%5-%6%7]"_s.arg(band.data.at(0))
                          .arg(band.rect.top())
                          .arg(band.rect.left())
                          .arg(band.rect.right() + 1)
                          .arg(child.left())
                          .arg(child.right() + 1)
                          .arg(band.chevron ? u">"_s : QString());
        }
        return places.join(u' ');
    }

    QPoint gripperOf(const QString &initial) const
    {
        for (const BandLayout::Band &band : bands())
            if (band.data.startsWith(initial))
                return band.rect.topLeft() + QPoint(band.fixed ? 1 : 4, 8);
        return {};
    }

    void drag(const QPoint &from, const QPoint &to)
    {
        QTest::mousePress(&rebar, Qt::LeftButton, {}, from);
        // A mouse that is moved passes through the places between.
        for (int i = 1; i <= 4; ++i)
            QTest::mouseMove(&rebar, from + (to - from) * i / 4);
        QTest::mouseRelease(&rebar, Qt::LeftButton, {}, to);
    }

    /// What the menu of the gripper offers; the entry at `chosen` is taken.
    QString takeFromMenu(const QPoint &gripper, int chosen)
    {
        QContextMenuEvent event(QContextMenuEvent::Mouse, gripper, gripper);
        QCoreApplication::sendEvent(&rebar, &event);
        const std::unique_ptr<QMenu> menuOfBand(rebar.findChild<QMenu *>());
        QStringList entries;
        for (const QAction *action : menuOfBand ? menuOfBand->actions() : QList<QAction *>())
            entries += (action->isEnabled() ? u"+"_s : u"-"_s) + action->text();
        if (menuOfBand && chosen >= 0)
            menuOfBand->actions().at(chosen)->trigger();
        return entries.join(u", "_s);
    }

    QString take(const QStringList &step)
    {
        const auto number = [&step](int at) { return step.value(at).toInt(); };
        const QPoint gripper = gripperOf(step.value(1));
        if (step[0] == u"wide"_s)
            rebar.resize(number(1), rebar.height());
        else if (step[0] == u"drag"_s)
            drag(gripper, QPoint(number(2), number(3)));
        else if (step[0] == u"press-right"_s) // another button holds no band
            QTest::mousePress(&rebar, Qt::RightButton, {}, gripper), QTest::mouseMove(&rebar, QPoint(400, 60));
        else if (step[0] == u"double"_s)
            QTest::mouseDClick(&rebar, Qt::LeftButton, {}, gripper);
        else if (step[0] == u"over"_s)
            QTest::mouseMove(&rebar, gripper + QPoint(number(2), 0));
        else if (step[0] == u"least"_s)
            rebar.setBandMinimumSize(number(1), number(2), number(3));
        else if (step[0] == u"all-of"_s)
            rebar.showAllOfBand(number(1));
        else if (step[0] == u"none"_s)
            rebar.RemoveAllBands();
        else if (step[0] == u"menu"_s)
            return takeFromMenu(gripper, number(2));
        else if (step[0] == u"save"_s)
            return rebar.saveLayout();
        return rebar.cursor().shape() == Qt::SizeAllCursor ? u"hand"_s : QString();
    }

    QWidget window;
    QWidget *menu = new Box(u"MenuBar"_s, &window);
    QWidget *tools = new Box(u"ToolBar"_s, &window);
    QWidget *address = new Box(u"StyleBar"_s, &window);
    QStringList heights; ///< told
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
    /// Behind each step the file has where all bands stand, what heights were told, and what a menu offered.
    void bandsStandWhereTheyFitAndWhereTheyAreMoved()
    {
        std::unique_ptr<Fixture> f;
        const Steps steps{[&f](const Steps::Given &given) {
                              f = std::make_unique<Fixture>(800, given.contains(u"fixed"_s));
                              return QString();
                          },
                          [&f](const QString &step) {
                              const QString answer = f->take(step.split(u' '));
                              const QString heights = std::exchange(f->heights, {}).join(u' ');
                              return QStringList({f->placed(), heights, answer}).join(u" | "_s);
                          }};
        QCOMPARE(steps.differenceFrom(u"rebar.txt"_s), QString());
    }

    void aLayoutComesBackAsItWasKept()
    {
        Fixture f(806);
        QVERIFY(f.rebar.restoreLayout(kept));
        QCOMPARE(f.placed(), u"M0:0-806[10-806] T26:0-200[10-200] S26:202-806[212-806]");
        f.drag(f.gripperOf(u"S"_s), QPoint(300, f.rebar.height() + 20));
        const QString moved = f.rebar.saveLayout();
        QVERIFY(moved.contains(u"rowCount=\"3\""_s));
        Fixture other(806);
        QVERIFY(other.rebar.restoreLayout(moved));
        QCOMPARE(other.rebar.saveLayout(), moved);
        const QPointer<QWidget> child = other.menu;
        other.rebar.RemoveAllBands();
        QCOMPARE(other.rebar.saveLayout(), u"<Bands count=\"0\" rowCount=\"0\"/>"_s);
        QVERIFY(child->isHidden() && child->parentWidget() == &other.window);
        QCOMPARE(other.rebar.BandCount(), 0);
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
        QCOMPARE(f.placed(), u"M0:0-800[10-800] T26:0-686[10-686] S26:688-800[698-800]");
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

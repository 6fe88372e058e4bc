// SPDX-License-Identifier: GPL-3.0-or-later

#include "window/PaneLayout.h"

#include <QTest>

class tst_PaneLayout : public QObject
{
    Q_OBJECT

private:
    static FrameMeasures standard()
    {
        FrameMeasures m;
        m.width = 12000;
        m.height = 9000;
        m.rebarHeight = 900;
        m.statusHeight = 300;
        m.hostHeight = 390;
        m.barWidth = 75;
        m.margin = 45;
        m.horizontal = 3450;
        m.vertical = 2415;
        return m;
    }

private Q_SLOTS:
    void panesFillTheRoomBetweenRebarAndStatusBar()
    {
        const PaneLayout layout = PaneLayout::of(standard());
        QCOMPARE(layout.tree, QRectF(0, 900, 3450, 7755));
        QCOMPARE(layout.horizontalBar, QRectF(3450, 900, 75, 7755));
        QCOMPARE(layout.list, QRectF(3525, 900, 8430, 2415));
        QCOMPARE(layout.verticalBar, QRectF(3525, 3315, 8430, 75));
        QCOMPARE(layout.toolbarHost, QRectF(3525, 3390, 8430, 390));
        QCOMPARE(layout.browser, QRectF(3525, 3780, 8430, 4875));
    }

    void aSplitterPositionPastTheWindowIsBroughtIntoIt()
    {
        FrameMeasures m = standard();
        m.horizontal = 32767;
        m.vertical = -500;
        const PaneLayout layout = PaneLayout::of(m);
        QCOMPARE(layout.horizontalBar.left(), 11799.0);
        QCOMPARE(layout.verticalBar.top(), 1101.0);
    }

    void noPaneOfATinyWindowHasANegativeExtent()
    {
        FrameMeasures m = standard();
        m.width = 300;
        m.height = 1000;
        const PaneLayout layout = PaneLayout::of(m);
        for (const QRectF &pane :
             {layout.tree, layout.horizontalBar, layout.list, layout.verticalBar, layout.toolbarHost, layout.browser}) {
            QVERIFY(pane.width() >= 0);
            QVERIFY(pane.height() >= 0);
        }
    }

    void barsStopAtTheirBoundsAndAtWhatTheSettingsCanHold()
    {
        const SplitBounds across = PaneLayout::horizontalBounds(12000);
        QVERIFY(across.allows(201) && !across.allows(200) && across.allows(11799) && !across.allows(11800));
        const SplitBounds down = PaneLayout::verticalBounds(9000, 900, 300);
        QVERIFY(down.allows(1101) && !down.allows(1100) && down.allows(8199) && !down.allows(8200));
        QVERIFY(!PaneLayout::horizontalBounds(60000).allows(32768));
        const SplitBounds far = PaneLayout::verticalBounds(60000, 900, 300);
        QVERIFY(far.allows(900 + 32767) && !far.allows(900 + 32768));
    }

    void neighboursMeetInPixelsWhateverTheScale()
    {
        const ScreenScale odd{1440.0 / 107, 1440.0 / 107};
        const PaneLayout layout = PaneLayout::of(standard());
        const QRect tree = PaneLayout::toPixels(layout.tree, odd);
        const QRect bar = PaneLayout::toPixels(layout.horizontalBar, odd);
        const QRect list = PaneLayout::toPixels(layout.list, odd);
        QCOMPARE(tree.x() + tree.width(), bar.x());
        QCOMPARE(bar.x() + bar.width(), list.x());
    }
};

QTEST_GUILESS_MAIN(tst_PaneLayout)
#include "tst_PaneLayout.moc"

// SPDX-License-Identifier: GPL-3.0-or-later

#include "tests/fixtures/Golden.h"
#include "window/PaneLayout.h"

#include <QTest>

class tst_PaneLayout : public QObject
{
    Q_OBJECT

private:
    static QString text(const QRectF &place)
    {
        return u"%1,%2 %3x%4"_s.arg(place.x()).arg(place.y()).arg(place.width()).arg(place.height());
    }

private Q_SLOTS:
    /// A command tells the extent of the window, the positions of its bars, and its dots per inch.
    void everyPaneHasItsPlaceInTwipsAndInPixels()
    {
        const QString played = playedAgain(
            u"panes.txt"_s, [] {},
            [](const QStringList &words) {
                QList<double> is;
                for (const QString &word : words)
                    is += word.toDouble();
                const PaneLayout layout = PaneLayout::of({is[0], is[1], 900, 300, 390, 75, 45, is[2], is[3]});
                const SplitBounds across = PaneLayout::horizontalBounds(is[0]);
                const SplitBounds down = PaneLayout::verticalBounds(is[1], 900, 300);
                QStringList told = {u"bars: %1 to %2, %3 to %4"_s.arg(across.lowest)
                                        .arg(across.highest)
                                        .arg(down.lowest)
                                        .arg(down.highest)};
                for (const auto &[pane, twips] :
                     {std::pair("tree", layout.tree), std::pair("bar", layout.horizontalBar),
                      std::pair("list", layout.list), std::pair("lower bar", layout.verticalBar),
                      std::pair("toolbar", layout.toolbarHost), std::pair("page", layout.browser)})
                    told += QString::fromLatin1(pane) + u": "_s + text(twips) + u", pixels "_s +
                            text(PaneLayout::toPixels(twips, {1440 / is[4], 1440 / is[5]}));
                return told;
            });
        QCOMPARE(differenceFromGolden(u"panes.txt"_s, played), QString());
        const SplitBounds bounds{201, 11799};
        QVERIFY(bounds.allows(201) && !bounds.allows(200) && bounds.allows(11799) && !bounds.allows(11800));
    }
};

QTEST_GUILESS_MAIN(tst_PaneLayout)
#include "tst_PaneLayout.moc"

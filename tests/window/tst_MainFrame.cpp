// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/cReBar.h"
#include "platform/Literals.h"
#include "tests/window/PrincFixture.h"
#include "window/SplitBar.h"

#include <QMenu>
#include <QToolButton>

/// The frame of the real window: bars, bands and panes.
class tst_MainFrame : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<PrincFixture> m_fixture;

private Q_SLOTS:
    void init() { m_fixture = std::make_unique<PrincFixture>(); }
    void cleanup() { m_fixture.reset(); }

    void draggingTheBarsResizesThePanesWithinTheirBounds()
    {
        m_fixture->start();
        auto *bar = m_fixture->control<SplitBar>("picHorizontalSplit");
        const int before = bar->x();
        QTest::mousePress(bar, Qt::LeftButton, {}, QPoint(0, 5));
        QTest::mouseMove(bar, QPoint(70, 5));
        QTest::mouseMove(bar, QPoint(5000, 5)); // past the bound the bar stays
        QTest::mouseRelease(bar, Qt::LeftButton, {}, QPoint(0, 5));
        QCOMPARE(bar->x(), before + 70);
        QCOMPARE(int(m_fixture->settings().splitHorizontal), (before + 70) * 15);
        QCOMPARE(m_fixture->tree()->width(), before + 70);

        auto *lower = m_fixture->control<SplitBar>("picVerticalSplit");
        const int height = m_fixture->list()->height();
        QTest::mousePress(lower, Qt::LeftButton, {}, QPoint(5, 0));
        QTest::mouseMove(lower, QPoint(5, -30));
        QTest::mouseRelease(lower, Qt::LeftButton, {}, QPoint(5, 0));
        QCOMPARE(m_fixture->list()->height(), height - 30);
        QCOMPARE(int(m_fixture->settings().splitVertical), (height - 30) * 15);
    }

    void panesKeepInsideASmallWindow()
    {
        m_fixture->start();
        m_fixture->window->resize(640, 480);
        const QRect inner = m_fixture->window->rect();
        for (const char *name : {"tvwFavoris", "lvwItems", "cToolbarHost1", "WebBrowser1", "stabPrinc"}) {
            const QRect pane = m_fixture->control<QWidget>(name)->geometry();
            QVERIFY2(inner.contains(pane) && pane.height() > 20 && pane.width() > 100, name);
        }
    }

    void theStyleIsRefusedForOldControls()
    {
        m_fixture->start();
        m_fixture->toolbar()->setCommonControlsVersion({4, 70});
        m_fixture->choose(u"Standard"_s); // the settings of a first start say Office XP
        QVERIFY(m_fixture->settings().officeStyle && m_fixture->browserToolbar()->drawStyle() != DrawStyle::Standard);
        QCOMPARE(m_fixture->messages.shown.size(), std::size_t(1));
        m_fixture->toolbar()->setCommonControlsVersion({4, 71});
        m_fixture->choose(u"Standard"_s);
        QVERIFY(!m_fixture->settings().officeStyle && m_fixture->browserToolbar()->drawStyle() == DrawStyle::Standard);
        QCOMPARE(m_fixture->messages.shown.size(), std::size_t(1));
    }

    void theChevronOfABandOpensWhatDoesNotFit()
    {
        m_fixture->adjustSettings = [](AppSettings &settings) {
            settings.rebarLayout.replace("right=\"202\""_L1, "right=\"60\""_L1);
            settings.rebarLayout.replace("left=\"206\""_L1, "left=\"64\""_L1);
            settings.rebarLayout.replace("MinWidth=\"94\""_L1, "MinWidth=\"0\""_L1);
        };
        m_fixture->start();
        QVERIFY(m_fixture->toolbar()->idealWidth() > m_fixture->toolbar()->width());
        for (auto *button :
             m_fixture->control<cReBar>("cReBar1")->findChildren<QToolButton *>(QString(), Qt::FindDirectChildrenOnly))
            if (button->isVisible())
                button->click();
        auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        QVERIFY(menu && !menu->actions().isEmpty());
        menu->close();
    }
};

QTEST_MAIN(tst_MainFrame)
#include "tst_MainFrame.moc"

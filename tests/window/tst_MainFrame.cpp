// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/CaptionHeader.h"
#include "controls/CutTips.h"
#include "controls/cReBar.h"
#include "platform/Literals.h"
#include "tests/fixtures/Golden.h"
#include "tests/window/PrincFixture.h"
#include "window/PaneLayout.h"

#include <QMenu>
#include <QToolButton>

/// The frame of the real window: bars, bands and panes.
class tst_MainFrame : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<PrincFixture> m_fixture;

    static QString text(const QRectF &place)
    {
        return u"%1,%2 %3x%4"_s.arg(place.x()).arg(place.y()).arg(place.width()).arg(place.height());
    }

private Q_SLOTS:
    void init() { m_fixture = std::make_unique<PrincFixture>(); }
    void cleanup() { m_fixture.reset(); }

    void theChevronOfABandOpensWhatDoesNotFit()
    {
        m_fixture->adjustSettings = [](AppSettings &settings) {
            settings.rebarLayout.replace("right=\"202\""_L1, "right=\"60\""_L1);
            settings.rebarLayout.replace("left=\"206\""_L1, "left=\"64\""_L1);
            for (const char *least : {"94", "193"})
                settings.rebarLayout.replace("MinWidth=\""_L1 + QLatin1String(least) + u'"', "MinWidth=\"0\""_L1);
        };
        m_fixture->start();
        m_fixture->window->resize(150, 400);
        auto *rebar = m_fixture->control<cReBar>("cReBar1");
        QStringList opened;
        for (auto *button : rebar->findChildren<QToolButton *>(QString(), Qt::FindDirectChildrenOnly)) {
            if (!button->isVisible())
                continue;
            button->click();
            auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
            if (!menu) // the address has none
                continue;
            opened += menu->actions().last()->text();
            QCOMPARE(menu->pos(), rebar->mapToGlobal(button->geometry().topRight() + QPoint(2, 0)));
            menu->close();
        }
        QCOMPARE(opened, (QStringList{u"&Aide"_s, u"Ajouter"_s}));
    }

    void theShortcutsOfTheMenusWorkFromEveryPane()
    {
        m_fixture->start();
        QHash<QAction *, int> reached;
        for (QAction *action : m_fixture->window->actions()) {
            action->disconnect(); // it is only to be reached
            connect(action, &QAction::triggered, this, [&reached, action] { ++reached[action]; });
            const QKeySequence own = action->shortcut();
            for (const char *pane : {"tvwFavoris", "lvwItems", "txtURL", "picVerticalSplit"}) {
                auto *focused = m_fixture->control<QWidget>(pane);
                focused->setFocus();
                // One that the box would take for itself (copy) stands beside the one of the menu.
                for (const QKeySequence &keys : {own, QKeySequence(Qt::CTRL | Qt::Key_C)}) {
                    action->setShortcut(keys);
                    QTest::keyClick(focused, keys[0].key(), keys[0].keyboardModifiers());
                }
            }
            action->setShortcut({});
        }
        QCOMPARE(reached.values(), QList<int>({8, 8, 8, 8}));
    }

    void bigButtonsAndSmallOnesAllFitTheirBand()
    {
        m_fixture->start();
        for (const QString &size : {u"Grandes"_s, u"Petites"_s, u"Grandes"_s}) {
            m_fixture->choose(size);
            const int spare = m_fixture->toolbar()->width() - m_fixture->toolbar()->idealWidth();
            QVERIFY2(spare >= 0 && spare <= 2, qPrintable(QString::number(spare)));
        }
        // Also where the band stands behind the address, which had all the room.
        auto *rebar = m_fixture->control<cReBar>("cReBar1");
        QString layout = rebar->saveLayout();
        layout.replace(u"\"ToolBar\""_s, u"\"X\""_s)
            .replace(u"\"StyleBar\""_s, u"\"ToolBar\""_s)
            .replace(u"\"X\""_s, u"\"StyleBar\""_s);
        QVERIFY(rebar->restoreLayout(layout));
        m_fixture->choose(u"Grandes"_s);
        QVERIFY(m_fixture->toolbar()->width() >= m_fixture->toolbar()->idealWidth());
    }

    void whatHasNoRoomHasATip()
    {
        m_fixture->data.write(u"feeds.xml"_s,
                              "<favoris><feed name='Un nom bien trop long &amp; plus' url='http://127.0.0.1:9/x' "
                              "key='1' ttl='60' cache='-7'/></favoris>");
        const QString title = u"Un titre <b>plus long</b> que sa colonne, et que toute autre"_s;
        Files::write(m_fixture->data.cacheFile(u"1"_s), FeedTexts::rss(u"F"_s, {title.toHtmlEscaped(), u"court"_s}));
        m_fixture->adjustSettings = [](AppSettings &settings) { settings.splitHorizontal = 6000; };
        m_fixture->start();
        const FeedNodePtr node = m_fixture->node("1");
        m_fixture->click("1");
        const auto *ofTree = m_fixture->tree()->findChild<CutTips *>();
        const auto *ofList = m_fixture->list()->findChild<CutTips *>();
        const auto cell = [this](int row) {
            return m_fixture->list()->visualRect(m_fixture->list()->items().index(row, 0)).center();
        };
        const auto *header = qobject_cast<const CaptionHeader *>(m_fixture->list()->header());
        const auto caption = [header](int section) { return QPoint(header->sectionViewportPosition(section) + 2, 5); };
        QCOMPARE(ofTree->tipOfCell(m_fixture->placeOf(node)), QString());
        QCOMPARE(ofList->tipOfCell(cell(1)), QString());
        QCOMPARE(ofList->tipOfCaption(caption(0)), QString());
        QCOMPARE(ofList->tipOfCaption(caption(2)), u"<p>Date de publication</p>"_s);
        QCOMPARE(header->shownCaption(0), u"Titre"_s);
        QVERIFY(header->shownCaption(2).startsWith(u"Da"_s) && header->shownCaption(2).endsWith(u'…'));
        m_fixture->tree()->resize(90, 300);
        QCOMPARE(ofTree->tipOfCell(QPoint(m_fixture->tree()->visualRect(m_fixture->feedTree().indexOf(node)).left() + 5,
                                          m_fixture->placeOf(node).y())),
                 u"<p>Un nom bien trop long &amp; plus</p>"_s);
        QCOMPARE(ofList->tipOfCell(cell(0)), u"<p>"_s + title.toHtmlEscaped() + u"</p>"_s);
    }

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

QTEST_MAIN(tst_MainFrame)
#include "tst_MainFrame.moc"

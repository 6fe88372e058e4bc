// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/CaptionHeader.h"
#include "controls/CutTips.h"
#include "controls/cReBar.h"
#include "platform/Literals.h"
#include "tests/fixtures/Eventually.h"
#include "tests/fixtures/FeedTexts.h"
#include "tests/window/PrincFixture.h"
#include "window/SplitBar.h"

#include <QAccessible>
#include <QMenu>
#include <QTimer>
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

    void everyPartTellsWhatItIs()
    {
        m_fixture->start();
        QStringList told = {m_fixture->window->windowTitle()};
        for (const char *name : {"tbrMenu", "cToolbar1", "tlbBrowser", "Label1", "txtURL", "Image1", "prbChargement"}) {
            auto *part = m_fixture->control<QWidget>(name);
            told += QAccessible::queryAccessibleInterface(part)->text(QAccessible::Name);
        }
        QCOMPARE(told.join(u'|'), u"Quillwire|Barre de menus|Barre d'outils|Barre d'outils de la page|URL :|"
                                  "Adresse du flux|Ouvrir un fichier RSS|Chargement"_s);
    }

    void theStyleIsRefusedForOldControls()
    {
        m_fixture->start();
        for (const int minor : {70, 71}) { // the settings of a first start say Office XP
            m_fixture->toolbar()->setCommonControlsVersion({4, minor});
            m_fixture->choose(u"Standard"_s);
            QCOMPARE(m_fixture->settings().officeStyle, minor == 70);
            QCOMPARE(m_fixture->browserToolbar()->drawStyle() == DrawStyle::Standard, minor == 71);
            QCOMPARE(m_fixture->messages.shown.size(), std::size_t(1));
        }
        const Message &box = m_fixture->messages.shown.front();
        QCOMPARE(box.title + u'|' + box.text, u"Information|Impossible de changer le style"_s);
        QVERIFY(box.icon == Message::Icon::Information && box.buttons == Message::Buttons::Ok);
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

    void theShortcutsOfTheMenusWorkFromEveryPane_data()
    {
        QTest::addColumn<QByteArray>("pane");
        for (const char *pane : {"tvwFavoris", "lvwItems", "txtURL", "picVerticalSplit"})
            QTest::newRow(pane) << QByteArray(pane);
    }

    void theShortcutsOfTheMenusWorkFromEveryPane()
    {
        QFETCH(QByteArray, pane);
        m_fixture->startActive();
        auto *focused = m_fixture->control<QWidget>(pane);
        focused->setFocus();
        int actions = 0;
        for (QAction *action : m_fixture->window->actions()) {
            action->disconnect(); // it is only to be reached
            QSignalSpy triggered(action, &QAction::triggered);
            // One that the box would take for itself (copy) stands beside the one of the menu.
            for (const QKeySequence &keys : {action->shortcut(), QKeySequence(Qt::CTRL | Qt::Key_C)}) {
                action->setShortcut(keys);
                QTest::keyClick(focused, keys[0].key(), keys[0].keyboardModifiers());
            }
            action->setShortcut({});
            QCOMPARE(triggered.size(), 2);
            ++actions;
        }
        QCOMPARE(actions, 4);
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
        m_fixture->writeCatalogue("<favoris><feed name='Un nom bien trop long &amp; plus' url='http://127.0.0.1:9/x' "
                                  "key='1' ttl='60' cache='-7'/></favoris>");
        const QString title = u"Un titre <b>plus long</b> que sa colonne, et que toute autre"_s;
        Files::write(m_fixture->data.cacheFile(u"1"_s), FeedTexts::rss(u"F"_s, {title.toHtmlEscaped(), u"court"_s}));
        m_fixture->adjustSettings = [](AppSettings &settings) { settings.splitHorizontal = 6000; };
        m_fixture->start();
        const FeedNodePtr node = m_fixture->node("1");
        m_fixture->click(node);
        const auto *ofTree = m_fixture->tree()->findChild<CutTips *>();
        const auto *ofList = m_fixture->list()->findChild<CutTips *>();
        const auto cell = [this](int row) {
            return m_fixture->list()->visualRect(m_fixture->list()->items().index(row, 0)).center();
        };
        const auto caption = [this](int section) {
            return QPoint(m_fixture->list()->header()->sectionViewportPosition(section) + 2, 5);
        };
        QCOMPARE(ofTree->tipOfCell(m_fixture->placeOf(node)), QString());
        QCOMPARE(ofList->tipOfCell(cell(1)), QString());
        QCOMPARE(ofList->tipOfCaption(caption(0)), QString());
        QCOMPARE(ofList->tipOfCaption(caption(2)), u"<p>Date de publication</p>"_s);
        const auto *header = qobject_cast<const CaptionHeader *>(m_fixture->list()->header());
        QCOMPARE(header->shownCaption(0), u"Titre"_s);
        QVERIFY(header->shownCaption(2).startsWith(u"Da"_s) && header->shownCaption(2).endsWith(u'…'));
        m_fixture->tree()->resize(90, 300);
        QCOMPARE(ofTree->tipOfCell(QPoint(m_fixture->tree()->visualRect(m_fixture->feedTree().indexOf(node)).left() + 5,
                                          m_fixture->placeOf(node).y())),
                 u"<p>Un nom bien trop long &amp; plus</p>"_s);
        QCOMPARE(ofList->tipOfCell(cell(0)), u"<p>"_s + title.toHtmlEscaped() + u"</p>"_s);
    }

    void f6AndTabGoThroughThePanesInOrderAlsoWithALivePage()
    {
        m_fixture->startActive();
        auto *page = m_fixture->control<BrowserPane>("WebBrowser1");
        QSignalSpy loaded(page, &BrowserPane::DocumentComplete);
        page->show();
        QVERIFY(eventually([&] { return !loaded.isEmpty(); }));
        const QList<QWidget *> panes = {m_fixture->tree(), m_fixture->list(), page,
                                        m_fixture->control<AddressBox>("txtURL")};
        const auto paneWithFocus = [&panes] {
            for (qsizetype i = 0; i < panes.size(); ++i)
                if (QWidget *focus = QApplication::focusWidget(); panes[i] == focus || panes[i]->isAncestorOf(focus))
                    return i;
            return qsizetype(-1);
        };
        panes.first()->setFocus();
        for (const qsizetype next : {1, 2, 3, 0}) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_F6);
            QCOMPARE(paneWithFocus(), next);
        }
        for (const qsizetype next : {3, 2, 1, 0}) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_F6, Qt::ShiftModifier);
            QCOMPARE(paneWithFocus(), next);
        }
        // In the page itself Tab goes from link to link, so that it is entered from both sides.
        m_fixture->list()->setFocus();
        QTest::keyClick(m_fixture->list(), Qt::Key_Tab);
        QCOMPARE(paneWithFocus(), qsizetype(2));
        panes.last()->setFocus();
        QTest::keyClick(panes.last(), Qt::Key_Backtab, Qt::ShiftModifier);
        QCOMPARE(paneWithFocus(), qsizetype(2));
        panes.first()->setFocus();
        QTest::keyClick(panes.first(), Qt::Key_Tab);
        QCOMPARE(paneWithFocus(), qsizetype(1));
    }

    void shiftF10OpensTheMenuOfWhatHasTheFocus_data()
    {
        QTest::addColumn<QByteArray>("control");
        QTest::addColumn<QString>("entry");
        QTest::newRow("tree") << QByteArray("tvwFavoris") << u"Nouveau dossier"_s;
        QTest::newRow("list") << QByteArray("lvwItems") << u"Auteur"_s; // nothing is selected
        QTest::newRow("address") << QByteArray("txtURL") << u"Paste"_s;
    }

    void shiftF10OpensTheMenuOfWhatHasTheFocus()
    {
        QFETCH(QByteArray, control);
        QFETCH(QString, entry);
        m_fixture->startActive();
        m_fixture->click(m_fixture->node("root"));
        auto *focused = m_fixture->control<QWidget>(control);
        focused->setFocus();
        QStringList entries;
        QTimer::singleShot(0, qApp, [&entries] {
            auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
            if (!menu)
                return;
            for (const QAction *action : menu->actions())
                entries.append(action->text());
            menu->close();
        });
        QTest::keyClick(focused, Qt::Key_F10, Qt::ShiftModifier);
        QTRY_VERIFY2(!entries.filter(entry).isEmpty(), qPrintable(entries.join(u'|')));
    }

    void theBarsTellWhatTheyAreAndMoveByKeysAndByTools()
    {
        m_fixture->start();
        for (const char *name : {"picHorizontalSplit", "picVerticalSplit"}) {
            auto *bar = m_fixture->control<SplitBar>(name);
            const bool across = name[3] == 'H';
            const auto edge = [&] { return across ? bar->x() : bar->y(); };
            QAccessibleInterface *told = QAccessible::queryAccessibleInterface(bar);
            QCOMPARE(told->role(), QAccessible::Splitter);
            QVERIFY(told->text(QAccessible::Name).startsWith(u"Séparation"_s));
            QAccessibleValueInterface *value = told->valueInterface();
            QVERIFY(value);
            const int before = edge();
            QCOMPARE(value->currentValue().toInt(), before);
            QTest::keyClick(bar, across ? Qt::Key_Right : Qt::Key_Down);
            QCOMPARE(edge(), before + value->minimumStepSize().toInt());
            value->setCurrentValue(value->minimumValue());
            QCOMPARE(edge(), value->minimumValue().toInt());
            QVERIFY(edge() < before && m_fixture->list()->isVisible());
            value->setCurrentValue(1000000); // past the end is the end
            QCOMPARE(edge(), value->maximumValue().toInt());
        }
    }
};

QTEST_MAIN(tst_MainFrame)
#include "tst_MainFrame.moc"

// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/ImageList.h"
#include "controls/cPopupMenu.h"
#include "controls/cToolbar.h"
#include "controls/cToolbarHost.h"
#include "platform/Literals.h"

#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QSignalSpy>
#include <QStyleOptionToolButton>
#include <QTest>
#include <QVBoxLayout>

namespace {

/// Three buttons, a separator, and one with an arrow: indices 0 to 4.
void fill(cToolbar &toolbar)
{
    toolbar.setImageList(&ImageLists::vbalImageList4());
    toolbar.AddButton(u"Précédent"_s, 4, u"Précédent"_s, cToolbar::AutoSize, u"precedent"_s);
    toolbar.AddButton(u"Suivant"_s, 5, u"Suivant"_s, cToolbar::AutoSize, u"suivant"_s);
    toolbar.AddButton(QString(), -1, QString(), cToolbar::Separator, QString());
    toolbar.AddButton(u"Envoyer la new par mail"_s, 10, u"Envoyer"_s, cToolbar::AutoSize, u"send_mail"_s);
    toolbar.AddButton(u"Pièce jointe"_s, 9, u"Pièce jointe"_s, cToolbar::DropDownArrow, u"browser_attachment"_s);
}

QAction *actionWithText(const QMenu *menu, const QString &text)
{
    for (QAction *action : menu->actions()) {
        if (action->text() == text)
            return action;
    }
    return nullptr;
}

int add(cPopupMenu &menu, const QString &caption, int parent = -1)
{
    cPopupMenu::Item item;
    item.caption = caption;
    item.key = u"key of "_s + caption;
    item.parentIndex = parent;
    return menu.AddItem(item);
}

} // namespace

class tst_MenusAndToolbars : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theBodyClicksAndTheArrowDropsDown()
    {
        cToolbar toolbar;
        fill(toolbar);
        toolbar.resize(toolbar.sizeHint());
        toolbar.show();
        QSignalSpy clicks(&toolbar, &cToolbar::ButtonClick);
        QSignalSpy drops(&toolbar, &cToolbar::DropDownPress);
        QToolButton *button = toolbar.button(4);
        QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(4, button->height() / 2));
        QCOMPARE(clicks.size(), 1);
        QCOMPARE(clicks.at(0).at(0).toInt(), 4);
        QCOMPARE(drops.size(), 0);
        QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(button->width() - 3, button->height() / 2));
        QCOMPARE(clicks.size(), 1);
        QCOMPARE(drops.size(), 1);
        QTest::keyClick(button, Qt::Key_Down);
        QCOMPARE(drops.size(), 2);
        QCOMPARE(toolbar.dropDownPosition(4), button->mapToGlobal(QPoint(0, button->height())));
    }

    void whatDoesNotFitIsReachedThroughTheOverflowMenu()
    {
        cToolbar toolbar;
        fill(toolbar);
        toolbar.setButtonEnabled(3, false);
        toolbar.resize(toolbar.idealWidth(), 30);
        toolbar.show();
        QVERIFY(!toolbar.ShowOverflow(QPoint()));
        QVERIFY(toolbar.isButtonEnabled(1) && !toolbar.isButtonEnabled(u"send_mail"_s) && !toolbar.isButtonEnabled(2));
        toolbar.resize(toolbar.button(0)->width() + 2, 30);
        QVERIFY(toolbar.button(0)->isVisible() && !toolbar.button(1)->isVisible());

        const QPoint place(40, 50);
        const QMenu *menu = toolbar.ShowOverflow(place);
        QVERIFY(menu);
        QVERIFY(!actionWithText(menu, u"Précédent"_s));
        QVERIFY(!actionWithText(menu, u"Envoyer la new par mail"_s)->isEnabled());
        QSignalSpy clicks(&toolbar, &cToolbar::ButtonClick);
        QSignalSpy drops(&toolbar, &cToolbar::DropDownPress);
        actionWithText(menu, u"Suivant"_s)->trigger();
        actionWithText(menu, u"Pièce jointe"_s)->trigger();
        QCOMPARE(clicks.size(), 1);
        QCOMPARE(clicks.at(0).at(0).toInt(), 1);
        QCOMPARE(drops.size(), 1);
        QCOMPARE(toolbar.dropDownPosition(4), place); // the button itself isn't in sight
    }

    void arrowKeysPassOverDisabledButtonsAndTabStopsOnce()
    {
        cToolbar toolbar;
        fill(toolbar);
        toolbar.setButtonEnabled(1, false);
        toolbar.resize(toolbar.sizeHint());
        toolbar.show();
        QVERIFY(QTest::qWaitForWindowActive(&toolbar));
        toolbar.button(0)->setFocus(Qt::TabFocusReason);
        QTest::keyClick(toolbar.button(0), Qt::Key_Right);
        QVERIFY(toolbar.button(3)->hasFocus());
        QTest::keyClick(toolbar.button(3), Qt::Key_Left);
        QVERIFY(toolbar.button(0)->hasFocus());
        QTest::keyClick(toolbar.button(0), Qt::Key_Left);
        QVERIFY(toolbar.button(4)->hasFocus());
        for (const int index : {0, 1, 3})
            QCOMPARE(toolbar.button(index)->focusPolicy(), Qt::NoFocus);
        toolbar.setButtonEnabled(4, false); // the stop isn't lost with the button that had it
        QCOMPARE(toolbar.button(0)->focusPolicy(), Qt::TabFocus);
    }

    void aMenuBarOpensByKeysAndOverflowsByMenus()
    {
        QWidget window;
        cPopupMenu menu(&window, false);
        for (const QString &caption : {u"&Fichier"_s, u"&Affichage"_s, u"&Aide"_s})
            add(menu, u"&Entrée"_s, add(menu, caption));
        cToolbar toolbar(&window);
        toolbar.CreateFromMenu(&menu);
        toolbar.resize(toolbar.sizeHint());
        window.resize(400, 200);
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QCOMPARE(toolbar.buttonCount(), 3);
        QVERIFY(!toolbar.ShowOverflow(QPoint()));

        QMenu *file = menu.action(0)->menu();
        QTest::keyClick(&window, Qt::Key_F10);
        QTRY_VERIFY(file->isVisible());
        QTest::keyClick(file, Qt::Key_Right);
        QTRY_VERIFY(menu.action(2)->menu()->isVisible());
        QTest::keyClick(menu.action(2)->menu(), Qt::Key_Escape);
        QTest::keyClick(&window, Qt::Key_Escape);
        QTest::keyClick(&window, Qt::Key_F, Qt::AltModifier);
        QTRY_VERIFY(file->isVisible());
        QSignalSpy clicks(&menu, &cPopupMenu::Click);
        QTest::keyClick(file, Qt::Key_E);
        QCOMPARE(clicks.size(), 1);
        QCOMPARE(clicks.at(0).at(0).toInt(), 1);

        toolbar.resize(toolbar.idealWidth() / 2, toolbar.height());
        const QMenu *overflow = toolbar.ShowOverflow(QPoint(10, 10));
        QVERIFY(overflow->actions().contains(menu.action(4)));
        QVERIFY(!overflow->actions().contains(menu.action(0)));
    }

    void aHostShowsAChevronForWhatItsToolbarCannot()
    {
        cToolbarHost host;
        auto *toolbar = new cToolbar(&host);
        fill(*toolbar);
        host.Capture(toolbar);
        host.setHostHeight(26);
        host.resize(toolbar->idealWidth() + 4, 26);
        host.show();
        auto *chevron = host.findChild<QToolButton *>(QString(), Qt::FindDirectChildrenOnly);
        QVERIFY(!chevron->isVisible());
        host.resize(toolbar->idealWidth() - 1, 26);
        QVERIFY(chevron->isVisible());
        QVERIFY(toolbar->geometry().right() < chevron->geometry().left());
    }

    void aMenuCanBeEmptiedAndFilledFromItsOwnClick()
    {
        QWidget owner;
        cPopupMenu menu(&owner, false);
        add(menu, u"alt"_s);
        connect(&menu, &cPopupMenu::Click, &menu, [&menu] {
            menu.Clear();
            add(menu, u"neu"_s);
        });
        menu.action(0)->trigger();
        QCOMPARE(menu.Count(), 1);
        QCOMPARE(menu.action(0)->text(), u"neu"_s);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(menu.menu()->actions().size(), 1);
    }

    void theTextBehindTheTabIsAWorkingShortcut()
    {
        QWidget owner;
        QVBoxLayout layout(&owner);
        QLineEdit box;
        layout.addWidget(&box);
        cPopupMenu menu(&owner, false);
        const int file = add(menu, u"&Fichier"_s);
        const int open = add(menu, u"&Importer...\tCtrl+I"_s, file);
        const int odd = add(menu, u"photo.jpg\tno key at all"_s, file);
        cToolbar bar(&owner);
        layout.addWidget(&bar);
        bar.CreateFromMenu(&menu); // the bar's way to the entry must not make the key ambiguous
        owner.show();
        QVERIFY(QTest::qWaitForWindowActive(&owner));
        box.setFocus();

        menu.setChecked(open, true);
        QSignalSpy clicks(&menu, &cPopupMenu::Click);
        QTest::keyClick(&box, Qt::Key_I, Qt::ControlModifier);
        QCOMPARE(clicks, QList<QVariantList>({{open}}));
        QVERIFY(menu.Checked(open) && menu.action(open)->isChecked()); // a choice leaves the mark
        QCOMPARE(menu.action(open)->text(), u"&Importer..."_s);
        QVERIFY(menu.action(odd)->shortcut().isEmpty());
        menu.setEnabled(open, false);
        QTest::keyClick(&box, Qt::Key_I, Qt::ControlModifier);
        menu.action(open)->trigger();
        QCOMPARE(clicks.size(), 1);
    }

    void itOutlivesItsOwner()
    {
        auto owner = std::make_unique<QWidget>();
        cPopupMenu menu(owner.get(), true);
        add(menu, u"Ouvrir\tCtrl+O"_s);
        owner.reset();
        menu.setChecked(0, true);
        menu.setOfficeXpStyle(false);
        QCOMPARE(add(menu, u"trop tard"_s), -1);
        menu.Clear();
        QCOMPARE(menu.Count(), 0);
    }
};

QTEST_MAIN(tst_MenusAndToolbars)
#include "tst_MenusAndToolbars.moc"

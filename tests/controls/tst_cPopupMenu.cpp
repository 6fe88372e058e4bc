// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/cPopupMenu.h"
#include "controls/cToolbar.h"
#include "platform/Literals.h"

#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

namespace {

int add(cPopupMenu &menu, const QString &caption, int parent = -1, int icon = -1)
{
    cPopupMenu::Item item;
    item.caption = caption;
    item.key = u"key of "_s + caption;
    item.parentIndex = parent;
    item.iconIndex = icon;
    return menu.AddItem(item);
}

} // namespace

class tst_cPopupMenu : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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

QTEST_MAIN(tst_cPopupMenu)
#include "tst_cPopupMenu.moc"

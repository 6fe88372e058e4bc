#include "controls/cPopupMenu.h"
#include "controls/cToolbar.h"

#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

namespace {

int add(cPopupMenu &menu, const QString &caption, int parent = -1, int icon = -1)
{
    cPopupMenu::Item item;
    item.caption = caption;
    item.key = QStringLiteral("key of ") + caption;
    item.parentIndex = parent;
    item.iconIndex = icon;
    return menu.AddItem(item);
}

} // namespace

class tst_cPopupMenu : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aChoiceIsReportedOnceAndLeavesTheCheckMark()
    {
        QWidget owner;
        cPopupMenu menu(&owner, false);
        const int entry = add(menu, QStringLiteral("Titre"));
        menu.setChecked(entry, true);
        QSignalSpy clicks(&menu, &cPopupMenu::Click);
        menu.action(entry)->trigger();
        QCOMPARE(clicks.size(), 1);
        QCOMPARE(clicks.at(0).at(0).toInt(), entry);
        QVERIFY(menu.Checked(entry));
        QVERIFY(menu.action(entry)->isChecked());
        menu.setEnabled(entry, false);
        menu.action(entry)->trigger();
        QCOMPARE(clicks.size(), 1);
    }

    void aMenuCanBeEmptiedAndFilledFromItsOwnClick()
    {
        QWidget owner;
        cPopupMenu menu(&owner, false);
        add(menu, QStringLiteral("alt"));
        connect(&menu, &cPopupMenu::Click, &menu, [&menu] {
            menu.Clear();
            add(menu, QStringLiteral("neu"));
        });
        menu.action(0)->trigger();
        QCOMPARE(menu.Count(), 1);
        QCOMPARE(menu.action(0)->text(), QStringLiteral("neu"));
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
        const int file = add(menu, QStringLiteral("&Fichier"));
        const int open = add(menu, QStringLiteral("&Importer...\tCtrl+I"), file);
        const int odd = add(menu, QStringLiteral("photo.jpg\tno key at all"), file);
        cToolbar bar(&owner);
        layout.addWidget(&bar);
        bar.CreateFromMenu(&menu); // the bar's way to the entry must not make the key ambiguous
        owner.show();
        QVERIFY(QTest::qWaitForWindowActive(&owner));
        box.setFocus();

        QSignalSpy clicks(&menu, &cPopupMenu::Click);
        QTest::keyClick(&box, Qt::Key_I, Qt::ControlModifier);
        QCOMPARE(clicks.size(), 1);
        QCOMPARE(clicks.at(0).at(0).toInt(), open);
        QCOMPARE(menu.action(open)->text(), QStringLiteral("&Importer..."));
        QVERIFY(menu.action(odd)->shortcut().isEmpty());
        menu.setEnabled(open, false);
        QTest::keyClick(&box, Qt::Key_I, Qt::ControlModifier);
        QCOMPARE(clicks.size(), 1);
    }

    void itOutlivesItsOwner()
    {
        auto owner = std::make_unique<QWidget>();
        cPopupMenu menu(owner.get(), true);
        add(menu, QStringLiteral("Ouvrir\tCtrl+O"));
        owner.reset();
        menu.setChecked(0, true);
        menu.setOfficeXpStyle(false);
        QCOMPARE(add(menu, QStringLiteral("trop tard")), -1);
        menu.Clear();
        QCOMPARE(menu.Count(), 0);
    }
};

QTEST_MAIN(tst_cPopupMenu)
#include "tst_cPopupMenu.moc"

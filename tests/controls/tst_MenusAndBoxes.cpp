// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/DialogBase.h"
#include "controls/DialogStyle.h"
#include "controls/FileDialogs.h"
#include "controls/FrenchTexts.h"
#include "controls/MessageBoxes.h"
#include "controls/cPopupMenu.h"
#include "controls/cToolbar.h"
#include "platform/Files.h"
#include "platform/Literals.h"
#include "tests/fixtures/Eventually.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QFileDialog>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

namespace {

int add(cPopupMenu &menu, const QString &caption, int parent = -1)
{
    cPopupMenu::Item item;
    item.caption = caption;
    item.key = u"key of "_s + caption;
    item.parentIndex = parent;
    return menu.AddItem(item);
}

} // namespace

/// Pop-up menus, and what stands in a window of its own.
class tst_MenusAndBoxes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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

    void aDialogIsCentredByWholeDivisionsAndStaysOnTheScreen()
    {
        QCOMPARE(DialogBase::centredPosition(QRect(100, 50, 601, 401), QSize(200, 100)), QPoint(300, 200));
        QCOMPARE(DialogBase::centredPosition(QRect(100, 50, 101, 51), QSize(200, 100)), QPoint(51, 26));
        QWidget frame;
        frame.setGeometry(-500, -500, 100, 100);
        DialogBase dialog(u"Options"_s, &frame);
        dialog.resize(300, 200);
        dialog.centre();
        QVERIFY(frame.screen()->availableGeometry().contains(QRect(dialog.pos(), dialog.size())));
    }

    void boxesToTickAreSeenOnADarkDesktop()
    {
        QPalette dark(Qt::white, QColor(0x2D2D30), Qt::gray, Qt::black, Qt::gray, Qt::white, QColor(0x1E1E20));
        dark.setColor(QPalette::Window, QColor(0x2D2D30));
        auto *style = new DialogStyle(u"fusion"_s);
        QCheckBox box;
        QRadioButton button;
        QTreeWidget list;
        style->setParent(&list);
        auto *item = new QTreeWidgetItem(&list, {QString()});
        item->setCheckState(0, Qt::Unchecked);
        for (QWidget *widget : std::initializer_list<QWidget *>{&box, &button, &list, list.viewport()}) {
            widget->setStyle(style);
            widget->setPalette(dark);
        }
        for (QWidget *widget : std::initializer_list<QWidget *>{&box, &button, list.viewport()}) {
            const QImage picture = widget->grab(QRect(0, 0, 40, 20)).toImage();
            int brightest = 0;
            for (int x = 0; x < picture.width(); ++x)
                for (int y = 0; y < picture.height(); ++y)
                    brightest = std::max(brightest, qGray(picture.pixel(x, y)));
            QVERIFY2(brightest > 0x70, widget->metaObject()->className());
        }
    }

    void messageBoxesAnswerInFrench()
    {
        using Icon = Message::Icon;
        using Buttons = Message::Buttons;
        const auto shown = [](const Message &message, Qt::Key key) {
            QStringList told;
            QTimer::singleShot(0, qApp, [&] {
                auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
                told += {box->windowTitle(),
                         box->text(),
                         box->textFormat() == Qt::PlainText ? u"plain"_s : u"markup"_s,
                         QString::number(box->icon()),
                         box->defaultButton()->text(),
                         QString::number(box->textInteractionFlags() & Qt::TextSelectableByKeyboard)};
                for (const QAbstractButton *button : box->buttons())
                    told += button->text();
                QTest::keyClick(box, key);
            });
            told += QString::number(int(MessageBoxes().show(message)));
            return told.join(u'|');
        };
        QCOMPARE(shown({u"<i>t</i> & u"_s, u"Attention"_s, Icon::Exclamation}, Qt::Key_Return),
                 u"Attention|<i>t</i> & u|plain|2|OK|2|OK|0"_s);
        QCOMPARE(shown({u"t"_s, {}, Icon::Critical}, Qt::Key_Escape), u"Quillwire|t|plain|3|OK|2|OK|0"_s);
        QCOMPARE(shown({u"t"_s, {}, Icon::Information, Buttons::YesNo}, Qt::Key_O),
                 u"Quillwire|t|plain|1|&Oui|2|&Oui|&Non|1"_s);
        QCOMPARE(shown({u"t"_s, {}, Icon::None, Buttons::YesNo}, Qt::Key_Return),
                 u"Quillwire|t|plain|0|&Oui|2|&Oui|&Non|1"_s);
        QCOMPARE(shown({u"t"_s, {}, Icon::None, Buttons::YesNo}, Qt::Key_Escape),
                 u"Quillwire|t|plain|0|&Oui|2|&Oui|&Non|2"_s);
    }

    void fileDialogsAreFrench()
    {
        const QTemporaryDir data;
        Files::write(data.filePath(u"a.txt"_s), QByteArray(2048, 'x'));
        Files::write(data.filePath(u"b.opml"_s), "y");
        const auto shown = [&data](const std::function<QString()> &ask, bool accept) {
            QStringList told;
            QTimer::singleShot(0, qApp, [&] {
                auto *dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
                for (const auto label : {QFileDialog::Accept, QFileDialog::Reject, QFileDialog::LookIn,
                                         QFileDialog::FileName, QFileDialog::FileType})
                    told += dialog->labelText(label);
                told += {dialog->windowTitle(), dialog->nameFilters().join(u','), QString::number(dialog->fileMode()),
                         QString::number(dialog->acceptMode())};
                const auto *view = dialog->findChild<QTreeView *>(u"treeView"_s);
                told += QString::number(view->header()->sectionResizeMode(0)) +
                        QString::number(view->header()->sectionResizeMode(1));
                dialog->setDirectory(data.path());
                if (!accept)
                    dialog->setNameFilter({});
                (void)eventually([view] { return view->model()->rowCount(view->rootIndex()) > 1; }, 500);
                const auto cell = [view](int row, int column) {
                    return view->model()->index(row, column, view->rootIndex()).data().toString();
                };
                QStringList files;
                for (int row = 0; row < view->model()->rowCount(view->rootIndex()); ++row)
                    files += cell(row, 0) + u'|' + cell(row, 1);
                files.sort(); // the dialog sorts them when it comes to it
                told += files;
                const QModelIndex date = view->model()->index(0, 3, view->rootIndex());
                told += QLocale().toDateTime(date.data().toString(), QLocale::ShortFormat).isValid() ? u"dated"_s
                                                                                                     : u"undated"_s;
                if (auto *name = dialog->findChild<QLineEdit *>(u"fileNameEdit"_s); name->text().isEmpty())
                    name->setText(u"b.opml"_s);
                QMetaObject::invokeMethod(dialog, "done", Q_ARG(int, int(accept)));
            });
            told += ask();
            return told.join(u'|').replace(data.path(), u"DATA"_s);
        };
        FrenchTexts::install(*qApp);
        const QString labels = u"|Annuler|Dossier :|Nom du fichier :|Type :|T|"_s;
        const QString all = u"Tous les fichiers (*)|%1|%2|13|a.txt|2,00 Kio|b.opml|1 octets|dated|"_s;
        QCOMPARE(shown([] { return FileDialogs::askOpenFile(nullptr, u"T"_s, u"Listes (*.opml)"_s); }, true),
                 u"Ouvrir"_s + labels + u"Listes (*.opml)|1|0|13|b.opml|1 octets|dated|DATA/b.opml"_s);
        QCOMPARE(shown([] { return FileDialogs::askOpenFile(nullptr, u"T"_s, {}); }, false),
                 u"Ouvrir"_s + labels + all.arg(1).arg(0));
        QCOMPARE(
            shown([&data] { return FileDialogs::askSaveFile(nullptr, u"T"_s, {}, data.filePath(u"c.opml"_s)); }, true),
            u"Enregistrer"_s + labels + all.arg(0).arg(1) + u"DATA/c.opml"_s);
    }
};

QTEST_MAIN(tst_MenusAndBoxes)
#include "tst_MenusAndBoxes.moc"

// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/DialogBase.h"
#include "controls/DialogStyle.h"
#include "controls/FileDialogs.h"
#include "controls/FrenchTexts.h"
#include "controls/MessageBoxes.h"
#include "controls/cPopupMenu.h"
#include "tests/fixtures/AccessibleTree.h"
#include "tests/fixtures/Eventually.h"
#include "tests/fixtures/Golden.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QGroupBox>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QStyleFactory>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

/// Pop-up menus, and what stands in a window of its own.
class tst_MenusAndBoxes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aMenuLosesItsEntriesInItsOwnClickAndThenItsOwner()
    {
        const auto add = [](cPopupMenu &menu, const QString &caption) {
            cPopupMenu::Item item;
            item.caption = caption;
            return menu.AddItem(item);
        };
        auto owner = std::make_unique<QWidget>();
        cPopupMenu menu(owner.get(), true);
        add(menu, u"alt\tCtrl+O"_s);
        connect(&menu, &cPopupMenu::Click, &menu, [&] {
            menu.Clear();
            add(menu, u"neu\tCtrl+N"_s);
        });
        menu.action(0)->trigger();
        QCOMPARE(menu.Count(), 1);
        QCOMPARE(menu.action(0)->text(), u"neu"_s);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(menu.menu()->actions().size(), 1);
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

    void bordersAreSeenWhereAllIsBlack()
    {
        QPalette black(Qt::white, Qt::black, Qt::black, Qt::black, Qt::black, Qt::white, Qt::white, Qt::black,
                       Qt::black);
        DialogStyle framing(u"fusion"_s);
        framing.polish(black);
        const std::unique_ptr<QStyle> plain(QStyleFactory::create(u"fusion"_s));
        QPushButton button, off;
        QLineEdit line;
        QComboBox list;
        QTreeWidget tree;
        QGroupBox group;
        off.setEnabled(false);
        for (QWidget *widget : std::initializer_list<QWidget *>{&button, &off, &line, &list, &tree, &group}) {
            const auto drawn = [widget](QStyle &style, const QPalette &palette) {
                widget->setStyle(&style);
                widget->setPalette(palette);
                return widget->grab(QRect(0, 0, 60, 60)).toImage();
            };
            const QPalette usual = plain->standardPalette();
            QCOMPARE(drawn(framing, usual), drawn(*plain, usual));
            const QImage framed = drawn(framing, black);
            const QColor ink =
                black.color(widget->isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::WindowText);
            QVERIFY2(framed.pixelColor(0, qMin(50, widget->height() / 2)) == ink, widget->metaObject()->className());
            QVERIFY(ink.lightness() > 100);
        }
    }

    void whatTheyAskIsFrench()
    {
        FrenchTexts::install(*qApp);
        using Icon = Message::Icon;
        constexpr auto yesNo = Message::Buttons::YesNo;
        const QTemporaryDir data;
        Files::write(data.filePath(u"a.txt"_s), QByteArray(2048, 'x'));
        Files::write(data.filePath(u"b.opml"_s), "y");
        const QString told =
            message({u"<i>t</i> & u"_s, u"Attention"_s, Icon::Exclamation}, Qt::Key_Return) +
            message({u"t"_s, {}, Icon::Critical}, Qt::Key_Escape) +
            message({u"t"_s, {}, Icon::Information, yesNo}, Qt::Key_O) +
            message({u"t"_s, {}, Icon::None, yesNo}, Qt::Key_Return) +
            message({u"t"_s, {}, Icon::None, yesNo}, Qt::Key_Escape) +
            files(data, true, [] { return FileDialogs::askOpenFile(nullptr, u"T"_s, u"Listes (*.opml)"_s); }) +
            files(data, false, [] { return FileDialogs::askOpenFile(nullptr, u"T"_s, {}); }) +
            files(data, true,
                  [&data] { return FileDialogs::askSaveFile(nullptr, u"T"_s, {}, data.filePath(u"c.opml"_s)); });
        QVERIFY2(AccessibleTree::flaws(told).isEmpty(), qPrintable(AccessibleTree::flaws(told)));
        QCOMPARE(differenceFromGolden(u"boxes.txt"_s, told), QString());
    }

private:
    /// What the box shows, and its answer to the key.
    static QString message(const Message &message, Qt::Key key)
    {
        QString told;
        QTimer::singleShot(0, qApp, [&] {
            auto *const box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            told = u"[%1] %2 | format %3 | icon %4 | default %5 | flags %6"_s.arg(box->windowTitle(), box->text())
                       .arg(box->textFormat())
                       .arg(box->icon())
                       .arg(box->defaultButton()->text())
                       .arg(box->textInteractionFlags());
            for (const QAbstractButton *button : box->buttons())
                told += u" | "_s + button->text();
            told += u'\n' + AccessibleTree::of(box);
            QTest::keyClick(box, key);
        });
        const Messages::Answer answer = MessageBoxes().show(message);
        return told + u" => %1\n"_s.arg(int(answer));
    }

    /// What the dialog shows of the folder, and what comes of it.
    static QString files(const QTemporaryDir &data, bool accept, const std::function<QString()> &ask)
    {
        QStringList told;
        QTimer::singleShot(0, qApp, [&] {
            auto *const dialog = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
            for (const auto label : {QFileDialog::Accept, QFileDialog::Reject, QFileDialog::LookIn,
                                     QFileDialog::FileName, QFileDialog::FileType})
                told += dialog->labelText(label);
            const auto *const view = dialog->findChild<QTreeView *>(u"treeView"_s);
            told +=
                u"[%1] %2 | modes %3 %4 | columns %5 %6"_s.arg(dialog->windowTitle(), dialog->nameFilters().join(u','))
                    .arg(dialog->fileMode())
                    .arg(dialog->acceptMode())
                    .arg(view->header()->sectionResizeMode(0))
                    .arg(view->header()->sectionResizeMode(1));
            dialog->setDirectory(data.path());
            if (!accept)
                dialog->setNameFilter({});
            (void)eventually([view] { return view->model()->rowCount(view->rootIndex()) > 1; }, 500);
            const auto cell = [view](int row, int column) {
                return view->model()->index(row, column, view->rootIndex()).data().toString();
            };
            QStringList rows;
            for (int row = 0; row < view->model()->rowCount(view->rootIndex()); ++row)
                rows +=
                    cell(row, 0) + u' ' + cell(row, 1) +
                    (QLocale().toDateTime(cell(row, 3), QLocale::ShortFormat).isValid() ? u" dated"_s : u" undated"_s);
            rows.sort(); // the dialog sorts them when it comes to it
            told += rows;
            if (auto *const name = dialog->findChild<QLineEdit *>(u"fileNameEdit"_s); name->text().isEmpty())
                name->setText(u"b.opml"_s);
            QMetaObject::invokeMethod(dialog, "done", Q_ARG(int, int(accept)));
        });
        const QString chosen = ask().replace(data.path(), u"DATA"_s);
        return told.join(u" | "_s) + u" => "_s + chosen + u'\n';
    }
};

QTEST_MAIN(tst_MenusAndBoxes)
#include "tst_MenusAndBoxes.moc"

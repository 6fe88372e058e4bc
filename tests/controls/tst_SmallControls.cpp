// SPDX-License-Identifier: GPL-3.0-or-later

#include "controls/DialogBase.h"
#include "controls/DialogStyle.h"
#include "controls/MessageBoxes.h"
#include "controls/StatusBar.h"
#include "controls/SystemBrowser.h"
#include "controls/TabControl.h"
#include "controls/UpDown.h"
#include "platform/Literals.h"
#include "platform/RunTimeError.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

#include <tuple>

class tst_SmallControls : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void spinStepsFromWhatStandsInTheBox()
    {
        const QList<std::tuple<QString, int, QString>> rows = {
            {u"20"_s, 1, u"21"_s}, {u"15"_s, -1, u"15"_s},      {u"20"_s, 200, u"100"_s}, {u"1e20"_s, -1, u"99"_s},
            {u"-7"_s, 1, u"16"_s}, {u"beaucoup"_s, 1, u"16"_s}, {QString(), -1, u"15"_s}, {u"20.9"_s, 1, u"21"_s},
        };
        for (const auto &[typed, steps, expected] : rows) {
            QLineEdit box(typed);
            UpDown spin(&box, 15, 100, 1, 15);
            QCOMPARE(box.text(), typed);
            spin.stepBy(steps);
            QCOMPARE(box.text(), expected);
        }
    }

    void spinTakesKeysInTheBoxUnlessDisabled()
    {
        QLineEdit box(u"30"_s);
        UpDown spin(&box, 0, 3600, 1, 60);
        QTest::keyClick(&box, Qt::Key_Up);
        QTest::keyClick(&box, Qt::Key_Up);
        QTest::keyClick(&box, Qt::Key_Down);
        QCOMPARE(box.text(), u"31"_s);
        QCOMPARE(spin.value(), 31);
        box.setEnabled(false);
        spin.stepBy(1);
        box.setEnabled(true);
        spin.setEnabled(false);
        QTest::keyClick(&box, Qt::Key_Up);
        QCOMPARE(box.text(), u"31"_s);
    }

    void statusPanelsShareTheWidth()
    {
        StatusBar bar;
        const QString state = u"state"_s;
        const QString progress = u"progressbar"_s;
        const QString glue = u"glue"_s;
        bar.addPanel(state, 500);
        bar.addPanel(progress, 150);
        bar.addPanel(glue, 200, StatusBar::Panel::Glue);
        QVERIFY_EXCEPTION_THROWN(bar.addPanel(state, 1), RunTimeError);
        QVERIFY_EXCEPTION_THROWN(bar.setPanelText(u"none"_s, QString()), RunTimeError);
        bar.show();
        bar.resize(1000, 24);
        QVERIFY(bar.panelRect(glue).width() > 300);
        QSignalSpy moved(&bar, &StatusBar::panelsMoved);
        bar.resize(620, 24);
        QCOMPARE(moved.size(), 1);
        QCOMPARE(bar.panelRect(progress).width(), 150);
        QVERIFY(bar.panelRect(state).width() < 500 && bar.panelRect(progress).right() < 620);
        const QString markup = u"<b>fin</b>\nligne"_s;
        bar.setPanelText(state, markup);
        QCOMPARE(bar.findChild<QLabel *>(state)->text(), markup);
    }

    void tabsCountFromOne()
    {
        TabControl tabs;
        QCOMPARE(tabs.selectedTab(), 0);
        QCOMPARE(tabs.addTab(u"feedster"_s, u"Feedster"_s, new QWidget), 1);
        QCOMPARE(tabs.addTab(u"syndic8"_s, u"DayPop"_s, new QWidget), 2);
        QSignalSpy clicks(&tabs, &TabControl::TabClick);
        for (const int tab : {2, 3, 0})
            tabs.selectTab(tab);
        QCOMPARE(tabs.selectedTab(), 2);
        QCOMPARE(clicks.size(), 1);
        QCOMPARE(clicks.at(0).at(0).toInt(), 2);
        QCOMPARE(tabs.tabKey(2), u"syndic8"_s);
    }

    void onlyWebAddressesAndOwnPagesGoToTheBrowser()
    {
        QString seen;
        const SystemBrowser browser(u"/data"_s, [&seen](const QUrl &url) {
            seen = url.toString();
            return true;
        });
        const QList<QPair<QString, QString>> rewritten = {
            {u" HTTPS://exemple.fr "_s, u"https://exemple.fr"_s},
            {u"www.exemple.fr"_s, u"http://www.exemple.fr"_s},
            {u"mailto:moi@exemple.fr?%61ttach=/etc/passwd&cc=x@y.fr&Attachment=a"_s,
             u"mailto:moi@exemple.fr?cc=x@y.fr"_s},
            {u"mailto:moi@exemple.fr?attach=/etc/passwd"_s, u"mailto:moi@exemple.fr"_s},
        };
        for (const auto &[address, opened] : rewritten) {
            QVERIFY(browser.openInSystemBrowser(address));
            QCOMPARE(seen, opened);
        }
        for (const QString &address : {u"http://exemple.fr/a?b=c&d"_s, u"mailto:moi@exemple.fr"_s,
                                       u"mailto:moi@exemple.fr?Subject=a&body=b%26c"_s, u"feed:exemple.fr/a"_s,
                                       u"tel:+33123456789"_s, u"magnet:?xt=urn:btih:a"_s, u"file:///data/tmp.htm"_s}) {
            QVERIFY(browser.openInSystemBrowser(address));
            QCOMPARE(seen, address);
        }
        seen.clear();
        for (const QString &address :
             {u"feed:"_s, u"mailto:?subject=a"_s, u"ftp:///a"_s, u"file:///data/../etc/tmp.htm"_s,
              u"file:///data/feeds/tmp.htm"_s, u"file://host/data/tmp.htm"_s, u"file:///data/feeds.xml"_s,
              u"file:///usr/bin/program"_s, u"/usr/bin/program"_s, u"javascript:alert(1)"_s, u"data:text/html,x"_s,
              u"steam://run"_s, u"http://"_s, u"--option"_s, u""_s}) {
            QVERIFY2(!browser.openInSystemBrowser(address) && seen.isEmpty(), qPrintable(address));
        }
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
        using Answer = Messages::Answer;
        // Asked yes or no, the button that is pressed ("" closes the box), the answer.
        const QList<std::tuple<bool, QString, Answer>> rows = {{false, u"OK"_s, Answer::Ok},
                                                               {false, QString(), Answer::Ok},
                                                               {true, u"&Oui"_s, Answer::Yes},
                                                               {true, u"&Non"_s, Answer::No},
                                                               {true, QString(), Answer::No}};
        for (const auto &[question, press, answer] : rows) {
            const Message message{u"<i>titre</i> & suite"_s, question ? QString() : u"Attention"_s,
                                  Message::Icon::Exclamation,
                                  question ? Message::Buttons::YesNo : Message::Buttons::Ok};
            bool seen = false;
            QTimer::singleShot(0, this, [&, press = press, question = question] {
                auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
                QVERIFY(box);
                seen = box->text() == message.text && box->textFormat() == Qt::PlainText &&
                       box->icon() == QMessageBox::Warning && box->buttons().size() == (question ? 2 : 1) &&
                       box->windowTitle() == (question ? u"Quillwire"_s : message.title) && box->defaultButton() &&
                       box->defaultButton()->text() == (question ? u"&Oui"_s : u"OK"_s);
                for (QAbstractButton *button : box->buttons()) {
                    if (button->text() == press)
                        button->click();
                }
                if (press.isEmpty())
                    QTest::keyClick(box, Qt::Key_Escape);
            });
            QCOMPARE(MessageBoxes().show(message), answer);
            QVERIFY(seen);
        }
    }
};

QTEST_MAIN(tst_SmallControls)
#include "tst_SmallControls.moc"

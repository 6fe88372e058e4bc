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
#include <QRadioButton>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>

class tst_SmallControls : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void spinStepsFromWhatStandsInTheBox_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<int>("steps");
        QTest::addColumn<QString>("expected");
        QTest::newRow("up") << u"20"_s << 1 << u"21"_s;
        QTest::newRow("down to the end") << u"15"_s << -1 << u"15"_s;
        QTest::newRow("several") << u"20"_s << 200 << u"100"_s;
        QTest::newRow("far outside") << u"99999999999999999999"_s << -1 << u"99"_s;
        QTest::newRow("negative") << u"-7"_s << 1 << u"16"_s;
        QTest::newRow("letters") << u"beaucoup"_s << 1 << u"16"_s;
        QTest::newRow("empty") << QString() << -1 << u"15"_s;
        QTest::newRow("fraction") << u"20.9"_s << 1 << u"21"_s;
    }

    void spinStepsFromWhatStandsInTheBox()
    {
        QFETCH(QString, typed);
        QFETCH(int, steps);
        QFETCH(QString, expected);
        QLineEdit box(typed);
        UpDown spin(&box, 15, 100, 1, 15);
        QCOMPARE(box.text(), typed);
        spin.stepBy(steps);
        QCOMPARE(box.text(), expected);
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

    void onlyWebAddressesAndOwnPagesGoToTheBrowser_data()
    {
        QTest::addColumn<QString>("address");
        QTest::addColumn<QString>("opened");
        const auto row = [](const char *address, const char *opened) {
            QTest::newRow(address) << QString::fromUtf8(address) << QString::fromUtf8(opened);
        };
        row("http://exemple.fr/a?b=c&d", "http://exemple.fr/a?b=c&d");
        row(" HTTPS://exemple.fr ", "https://exemple.fr");
        row("www.exemple.fr", "http://www.exemple.fr");
        row("mailto:moi@exemple.fr", "mailto:moi@exemple.fr");
        row("mailto:moi@exemple.fr?Subject=a&body=b%26c", "mailto:moi@exemple.fr?Subject=a&body=b%26c");
        row("mailto:moi@exemple.fr?%61ttach=/etc/passwd&cc=x@y.fr&Attachment=a", "mailto:moi@exemple.fr?cc=x@y.fr");
        row("mailto:moi@exemple.fr?attach=/etc/passwd", "mailto:moi@exemple.fr");
        row("feed:exemple.fr/a", "feed:exemple.fr/a");
        row("tel:+33123456789", "tel:+33123456789");
        row("magnet:?xt=urn:btih:a", "magnet:?xt=urn:btih:a");
        row("feed:", "");
        row("mailto:?subject=a", "");
        row("ftp:///a", "");
        row("file:///data/tmp.htm", "file:///data/tmp.htm");
        row("file:///data/../etc/tmp.htm", "");
        row("file:///data/feeds/tmp.htm", "");
        row("file://host/data/tmp.htm", "");
        row("file:///data/feeds.xml", "");
        row("file:///usr/bin/program", "");
        row("/usr/bin/program", "");
        row("javascript:alert(1)", "");
        row("data:text/html,x", "");
        row("steam://run", "");
        row("http://", "");
        row("--option", "");
        row("", "");
    }

    void onlyWebAddressesAndOwnPagesGoToTheBrowser()
    {
        QFETCH(QString, address);
        QFETCH(QString, opened);
        QString seen;
        const SystemBrowser browser(u"/data"_s, [&seen](const QUrl &url) {
            seen = url.toString();
            return true;
        });
        QCOMPARE(browser.openInSystemBrowser(address), !opened.isEmpty());
        QCOMPARE(seen, opened);
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

    void messageBoxesAnswerInFrench_data()
    {
        QTest::addColumn<bool>("question");
        QTest::addColumn<QString>("press"); // "" closes the box
        QTest::addColumn<int>("answer");
        QTest::newRow("ok") << false << u"OK"_s << int(Messages::Answer::Ok);
        QTest::newRow("ok closed") << false << QString() << int(Messages::Answer::Ok);
        QTest::newRow("yes") << true << u"&Oui"_s << int(Messages::Answer::Yes);
        QTest::newRow("no") << true << u"&Non"_s << int(Messages::Answer::No);
        QTest::newRow("question closed") << true << QString() << int(Messages::Answer::No);
    }

    void messageBoxesAnswerInFrench()
    {
        QFETCH(bool, question);
        QFETCH(QString, press);
        QFETCH(int, answer);
        const QString text = u"<i>titre</i> & suite"_s;
        bool seen = false;
        QTimer::singleShot(0, this, [&] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            QVERIFY(box);
            seen = box->text() == text && box->textFormat() == Qt::PlainText && box->icon() == QMessageBox::Warning &&
                   box->buttons().size() == (question ? 2 : 1);
            for (QAbstractButton *button : box->buttons()) {
                if (button->text() == press)
                    button->click();
            }
            if (press.isEmpty())
                QTest::keyClick(box, Qt::Key_Escape);
        });
        MessageBoxes boxes;
        const Message message{text, u"Attention"_s, Message::Icon::Exclamation,
                              question ? Message::Buttons::YesNo : Message::Buttons::Ok};
        QCOMPARE(int(boxes.show(message)), answer);
        QVERIFY(seen);
    }
};

QTEST_MAIN(tst_SmallControls)
#include "tst_SmallControls.moc"
